#include "model/item.h"
#include "rows/rowgeometry.h"
#include "rows/rowpainter.h"

#include <QImage>
#include <QPainter>
#include <QTest>

namespace {

const QColor Base(255, 255, 255);
const QColor Ink(0, 0, 0);
const QColor GreyText(128, 128, 128);
const QColor Highlight(0, 0, 160);
const QColor Blue(0, 0, 255); // item colour 1

QPalette palette(const QColor &base = Base, const QColor &text = Ink)
{
    QPalette p;
    for (QPalette::ColorRole role : {QPalette::Base, QPalette::AlternateBase, QPalette::HighlightedText})
        p.setColor(role, base);
    for (QPalette::ColorRole role : {QPalette::Text, QPalette::WindowText})
        p.setColor(role, text);
    p.setColor(QPalette::Disabled, QPalette::Text, GreyText);
    p.setColor(QPalette::Highlight, Highlight);
    return p;
}

// Compact rows: w = 16, rows of 17 pixels, the progress bar from y 4 to 12; solid text pixels.
RowPainter painter(quint32 flags = 0, const QPalette &colours = palette(), bool statistics = false)
{
    RowStyle style;
    style.flags = RowStyle::CompactMode | flags;
    style.clearType = false;
    style.prgColour = 1;
    style.showStatistics = statistics;
    return RowPainter(style, colours);
}

struct Rendered {
    QImage image;
    RowGeometry geometry;
    QImage cell(const QRect &rect) const { return image.copy(rect); }
    int count(const QRect &rect, const QColor &colour) const
    {
        int n = 0;
        for (int y = rect.top(); y <= rect.bottom(); ++y)
            for (int x = rect.left(); x <= rect.right(); ++x)
                n += image.pixelColor(x, y) == colour;
        return n;
    }
};

Rendered render(const RowPainter &painter, const Item *item, int state = 0)
{
    QImage image(320, painter.rowHeight(), QImage::Format_RGB32);
    image.fill(QColor(1, 2, 3)); // anything the painter leaves untouched shows
    QPainter p(&image);
    const QRect rect(0, 0, 320, painter.rowHeight());
    painter.paintItem(&p, rect, item, 1, 0, state);
    p.end();
    return {image, painter.itemGeometry(rect, item, 1, 0, state)};
}

Item *withChildren(std::initializer_list<quint16> progress)
{
    auto *item = new Item(QStringLiteral("Parent"));
    for (quint16 p : progress) {
        auto *child = new Item(QStringLiteral("child"));
        child->storeProgress(p);
        item->appendChild(child);
    }
    return item;
}

} // namespace

// A row's columns, where a tap lands, and how an item's row is drawn.
class TestRowPainter : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void hitTest()
    {
        // Level 1 at w = 16: glyph 0-15, status 16-31, icon 32-47, a one pixel gap, text from 49.
        const QRect row(0, 100, 300, 17);
        const struct {
            RowGeometry::Input in; // rect, level, base level, flat, date column, date width, w, status, icon
            QPoint at;
            int code;
        } rows[] = {
            {{row, 1, 0, false, false, 0, 16, true, true}, {15, 108}, RowGeometry::Glyph},
            {{row, 1, 0, false, false, 0, 16, true, true}, {16, 108}, RowGeometry::Status},
            {{row, 1, 0, false, false, 0, 16, true, true}, {40, 108}, RowGeometry::Icon},
            {{row, 1, 0, false, false, 0, 16, true, true}, {48, 108}, RowGeometry::Text},
            {{row, 1, 0, false, false, 0, 16, true, true}, {5, 99}, RowGeometry::Outside},
            {{row, 3, 0, false, false, 0, 16, true, true}, {31, 108}, RowGeometry::Indent},
            {{row, 3, 2, false, false, 0, 16, true, true}, {5, 108}, RowGeometry::Glyph},
            {{row, 1, 0, false, false, 0, 16, false, true}, {20, 108}, RowGeometry::Icon},
            {{row, 1, 0, false, false, 0, 16, false, false}, {20, 108}, RowGeometry::Text},
            {{row, 1, 0, false, false, 0, 16, true, false}, {33, 108}, RowGeometry::Text},
            {{row, 4, 0, true, false, 0, 16, true, true}, {5, 108}, RowGeometry::Indent},
            {{row, 1, 0, false, true, 40, 16, true, true}, {45, 108}, RowGeometry::Glyph},
        };
        for (const auto &r : rows)
            QCOMPARE(int(RowGeometry(r.in).hitTest(r.at)), r.code);

        const RowGeometry g({QRect(10, 0, 400, 21), 2, 0, false, true, 50, 20, true, true});
        QCOMPARE(g.dateRect(), QRect(10, 0, 50, 21));
        QCOMPARE(g.glyphRect(), QRect(80, 0, 20, 21));
        QCOMPARE(g.statusRect(), QRect(100, 0, 20, 21));
        QCOMPARE(g.iconRect(), QRect(120, 0, 20, 21));
        QCOMPARE(g.textRect(), QRect(141, 0, 269, 21));
    }

    void checkBoxImages()
    {
        auto box = [](quint16 progress, bool automatic) {
            Item item(QStringLiteral("Task"));
            item.storeProgress(progress);
            item.setAutoProgress(automatic);
            const Rendered r = render(painter(), &item);
            return r.cell(r.geometry.statusRect());
        };
        // Manual: clear only at 0, any other value ticked; automatic: three states of their own.
        QCOMPARE(box(40, false), box(100, false));
        QCOMPARE(box(1, true), box(50, true));
        const QList<QImage> all{box(0, false), box(100, false), box(0, true), box(50, true), box(100, true)};
        for (int i = 0; i < all.size(); ++i)
            for (int j = i + 1; j < all.size(); ++j)
                QVERIFY2(all[i] != all[j], qPrintable(QStringLiteral("images %1 and %2 look alike").arg(i).arg(j)));
    }

    void progressBar()
    {
        // The fill is progress × (16 − 2) / 100 pixels wide; -1: nothing filled, columns from the inner left.
        const QColor bottom(39, 39, 252); // band 10 of blue towards (255,251,240)
        const QColor top(251, 247, 240);  // band 63
        const std::pair<int, int> rows[] = {{0, -1}, {7, -1}, {8, 0}, {50, 6}, {60, 7}, {100, 13}};
        for (const auto &[progress, lastFilled] : rows) {
            Item item(QStringLiteral("Bar"));
            item.setStatusType(Item::ProgressBar);
            item.storeProgress(quint16(progress));
            const Rendered r = render(painter(), &item);
            const int left = r.geometry.statusRect().left() + 1;
            // The outline at rows 4 and 11 may touch the inside's corner pixels.
            for (int column = 0; column < 14; ++column) {
                const bool filled = column <= lastFilled;
                if (!filled && (column == 0 || column == 13))
                    continue;
                QCOMPARE(r.image.pixelColor(left + column, 10), filled ? bottom : Base);
                QCOMPARE(r.image.pixelColor(left + column, 5), filled ? top : Base);
            }
            QVERIFY(r.image.pixelColor(left + 5, 4) != Base && r.image.pixelColor(left + 5, 11) != Base);
            // A manual bar has rounded corners, an automatic one square corners.
            QCOMPARE(r.image.pixelColor(left - 1, 4), Base);
            item.setAutoProgress(true);
            QVERIFY(render(painter(), &item).image.pixelColor(left - 1, 4) != Base);
        }
    }

    void textColours()
    {
        const QColor yellow(240, 240, 0); // item colour 18
        const struct {
            quint16 colour, progress;
            bool selected;
            quint32 flags;
            QColor background, text;
        } rows[] = {
            {1, 0, false, 0, Base, Blue},
            {1, 100, false, RowStyle::GreyCompleted, Base, GreyText},
            {1, 100, false, 0, Base, Blue},
            {0, 0, true, 0, Highlight, Base},
            {18, 0, true, 0, yellow, Ink},
            {18, 100, true, RowStyle::GreyCompleted, yellow, Ink}, // a selected completed item stays in contrast
        };
        for (const auto &row : rows) {
            Item item(QStringLiteral("HHHHHHHH"));
            item.setColour(row.colour);
            item.storeProgress(row.progress);
            const Rendered r = render(painter(row.flags), &item, row.selected ? RowPainter::Selected : 0);
            const QRect text = r.geometry.textRect();
            QCOMPARE(r.image.pixelColor(text.right() - 2, 1), row.background);
            QVERIFY(r.count(text, row.text) > 20);
            for (const QColor &other : {Ink, GreyText, Blue, Base})
                QVERIFY(other == row.text || other == row.background || r.count(text, other) == 0);
        }
    }

    void fontsAndText()
    {
        // Completed items are struck out unless "Use normal font for completed items" is on.
        auto text = [](quint32 flags, quint16 progress) {
            Item item(QStringLiteral("Finished task"));
            item.setStatusType(Item::NoStatus);
            item.storeProgress(progress);
            const Rendered r = render(painter(flags), &item);
            return r.cell(r.geometry.textRect());
        };
        QVERIFY(text(0, 100) != text(0, 0));
        QCOMPARE(text(RowStyle::NormalFontForCompleted, 100), text(0, 0));
        Item item;
        item.setItalic(true);
        QVERIFY(painter().itemFont(&item).italic());
        QCOMPARE(painter().itemFont(&item).weight(), QFont::Normal);
        QCOMPARE(painter(RowStyle::BoldFont).itemFont(&item).weight(), QFont::Bold);
        // Statistics: open, partly done and completed children, not for flat rows.
        std::unique_ptr<Item> parent(withChildren({0, 0, 1, 99, 100, 100, 100}));
        QCOMPARE(painter(0, palette(), true).itemText(parent.get(), 0), QStringLiteral("Parent [2,2,3]"));
        QCOMPARE(painter(0, palette(), true).itemText(parent.get(), RowPainter::Flat), QStringLiteral("Parent"));
        QCOMPARE(painter().itemText(parent.get(), 0), QStringLiteral("Parent"));
    }

    void glyphFocusAndIcon()
    {
        std::unique_ptr<Item> parent(withChildren({0}));
        auto glyph = [&](int state) {
            const Rendered r = render(painter(), parent.get(), state);
            return r.cell(r.geometry.glyphRect());
        };
        QImage blank(16, 17, QImage::Format_RGB32);
        blank.fill(Base);
        const QImage collapsed = glyph(0);
        parent->setExpanded(true);
        const QList<QImage> all{blank, collapsed, glyph(0), glyph(RowPainter::AltGlyph)};
        for (int i = 0; i < all.size(); ++i)
            for (int j = i + 1; j < all.size(); ++j)
                QVERIFY(all[i] != all[j]);
        // A flat row and a childless item leave the column empty.
        QCOMPARE(glyph(RowPainter::Flat), blank);
        Item leaf(QStringLiteral("x"), 5);
        Rendered r = render(painter(), &leaf);
        QCOMPARE(r.cell(r.geometry.glyphRect()), blank);

        // The focus rectangle starts two pixels left of the text, along the whole row.
        const QRect before(r.geometry.textRect().left(), 0, 1, 17);
        QCOMPARE(r.count(before, Ink), 0);
        QVERIFY(render(painter(), &leaf, RowPainter::Focused).count(before, Ink) >= 5);
        QVERIFY(render(painter(), &leaf, RowPainter::Focused).count(QRect(200, 0, 60, 1), Ink) >= 20);
        // A link marks the icon; a hidden icon moves the text left by its column and gap.
        leaf.setLinks({QStringLiteral("https://example.org/")});
        const Rendered linked = render(painter(), &leaf);
        QVERIFY(linked.cell(linked.geometry.iconRect()) != r.cell(r.geometry.iconRect()));
        leaf.setShowIcon(false);
        QCOMPARE(render(painter(), &leaf).geometry.textRect().left(), r.geometry.textRect().left() - 17);
    }
};

QTEST_MAIN(TestRowPainter)
#include "tst_rowpainter.moc"
