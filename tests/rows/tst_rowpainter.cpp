#include "model/item.h"
#include "rows/colourtable.h"
#include "rows/iconset.h"
#include "rows/rowpainter.h"

#include <QImage>
#include <QPainter>
#include <QTest>

namespace {

const QColor Base(255, 255, 255);
const QColor Ink(0, 0, 0);
const QColor GreyText(128, 128, 128);
const QColor Highlight(0, 0, 160);

QPalette fixedPalette()
{
    QPalette p;
    p.setColor(QPalette::Base, Base);
    p.setColor(QPalette::AlternateBase, Base);
    p.setColor(QPalette::Text, Ink);
    p.setColor(QPalette::WindowText, Ink);
    p.setColor(QPalette::Disabled, QPalette::Text, GreyText);
    p.setColor(QPalette::Highlight, Highlight);
    p.setColor(QPalette::HighlightedText, Base);
    return p;
}

// Compact rows: w = 16, rows of 17 pixels, the progress bar from y 4 to 12.
RowStyle compactStyle(quint32 extraFlags = 0)
{
    RowStyle style;
    style.flags = RowStyle::CompactMode | extraFlags;
    style.clearType = false; // solid text pixels
    style.prgColour = 1;
    return style;
}

struct Rendered {
    QImage image;
    RowGeometry geometry;
};

Rendered render(const RowPainter &painter, const Item *item, int state = 0, int level = 1)
{
    QImage image(320, painter.rowHeight(), QImage::Format_RGB32);
    image.fill(QColor(1, 2, 3)); // anything the painter leaves untouched shows
    QPainter p(&image);
    const QRect rect(0, 0, 320, painter.rowHeight());
    painter.paintItem(&p, rect, item, level, 0, state);
    p.end();
    return {image, painter.itemGeometry(rect, item, level, 0, state)};
}

QImage cell(const Rendered &r, const QRect &rect)
{
    return r.image.copy(rect);
}

int countColour(const QImage &image, const QRect &rect, const QColor &colour)
{
    int n = 0;
    for (int y = rect.top(); y <= rect.bottom(); ++y)
        for (int x = rect.left(); x <= rect.right(); ++x)
            n += image.pixelColor(x, y) == colour;
    return n;
}

Item *itemWithChildren(std::initializer_list<quint16> progress)
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

class TestRowPainter : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void checkBoxImages();
    void progressBar_data();
    void progressBar();
    void progressBarCorners();
    void bandColour();
    void contrast_data();
    void contrast();
    void textColours_data();
    void textColours();
    void darkBaseLightensDarkColours();
    void completedStyle();
    void statistics();
    void expandGlyph();
    void focusRectangle();
    void dueDateColumn();
    void iconsAndLinkOverlay();
    void everyIconNumberDraws();
};

void TestRowPainter::checkBoxImages()
{
    const RowPainter painter(compactStyle(), fixedPalette());
    auto statusCell = [&](quint16 progress, bool automatic) {
        Item item(QStringLiteral("Task"));
        item.storeProgress(progress);
        item.setAutoProgress(automatic);
        const Rendered r = render(painter, &item);
        return cell(r, r.geometry.statusRect());
    };
    // Manual: clear only at 0; any other value is ticked (40% left from a former progress bar).
    const QImage clear = statusCell(0, false);
    const QImage ticked = statusCell(100, false);
    QVERIFY(clear != ticked);
    QCOMPARE(statusCell(40, false), ticked);
    // Automatic: three states, each unlike the manual boxes.
    const QImage autoClear = statusCell(0, true);
    const QImage autoPartial = statusCell(50, true);
    const QImage autoTicked = statusCell(100, true);
    QCOMPARE(statusCell(1, true), autoPartial);
    const QList<QImage> all{clear, ticked, autoClear, autoPartial, autoTicked};
    for (int i = 0; i < all.size(); ++i)
        for (int j = i + 1; j < all.size(); ++j)
            QVERIFY2(all[i] != all[j], qPrintable(QStringLiteral("images %1 and %2 look alike").arg(i).arg(j)));

    QCOMPARE(RowPainter::checkBoxGlyph(&*std::make_unique<Item>()), RowPainter::BoxClear);
}

void TestRowPainter::progressBar_data()
{
    QTest::addColumn<quint16>("progress");
    QTest::addColumn<int>("lastFilledColumn"); // -1: nothing filled; columns counted from the inner left
    // The fill is progress × (16 − 2) / 100 pixels wide.
    QTest::newRow("0%") << quint16(0) << -1;
    QTest::newRow("7%") << quint16(7) << -1;
    QTest::newRow("8%") << quint16(8) << 0;
    QTest::newRow("50%") << quint16(50) << 6;
    QTest::newRow("100%") << quint16(100) << 13;
}

void TestRowPainter::progressBar()
{
    QFETCH(quint16, progress);
    QFETCH(int, lastFilledColumn);
    const RowPainter painter(compactStyle(), fixedPalette());
    Item item(QStringLiteral("Bar"));
    item.setStatusType(Item::ProgressBar);
    item.storeProgress(progress);
    const Rendered r = render(painter, &item);
    const int innerLeft = r.geometry.statusRect().left() + 1;
    // The bar's rows: outline at 4 and 11, the inside from 5 to 10.
    const QColor bottom(39, 39, 252); // band 10 of blue (0,0,255) towards (255,251,240)
    const QColor top(251, 247, 240);  // band 63
    for (int column = 0; column < 14; ++column) {
        const bool filled = column <= lastFilledColumn;
        // The rounded outline may touch the inside's corner pixels.
        if (!filled && (column == 0 || column == 13))
            continue;
        QCOMPARE(r.image.pixelColor(innerLeft + column, 10), filled ? bottom : Base);
        QCOMPARE(r.image.pixelColor(innerLeft + column, 5), filled ? top : Base);
    }
    // Outside the bar the column is background.
    QCOMPARE(r.image.pixelColor(innerLeft + 5, 2), Base);
    QCOMPARE(r.image.pixelColor(innerLeft + 5, 14), Base);
    QVERIFY(r.image.pixelColor(innerLeft + 5, 4) != Base);  // outline
    QVERIFY(r.image.pixelColor(innerLeft + 5, 11) != Base); // outline
}

void TestRowPainter::progressBarCorners()
{
    const RowPainter painter(compactStyle(), fixedPalette());
    Item item(QStringLiteral("Bar"));
    item.setStatusType(Item::ProgressBar);
    const int left = painter.itemGeometry(QRect(0, 0, 320, 17), &item, 1, 0, 0).statusRect().left();
    // A manual bar has rounded corners, an automatic one square corners.
    QCOMPARE(render(painter, &item).image.pixelColor(left, 4), Base);
    item.setAutoProgress(true);
    QVERIFY(render(painter, &item).image.pixelColor(left, 4) != Base);
}

void TestRowPainter::bandColour()
{
    const QColor c1(0, 128, 255);
    const QColor c2(255, 251, 240);
    QCOMPARE(RowPainter::bandColour(0, c1, c2), c1);
    QCOMPARE(RowPainter::bandColour(32, c1, c2), QColor(127, 189, 247));
    QCOMPARE(RowPainter::bandColour(63, c1, c2), QColor(251, 249, 240));

    // PrgColour 0 takes the text colour.
    RowStyle style = compactStyle();
    style.prgColour = 0;
    QCOMPARE(RowPainter(style, fixedPalette()).progressColour(), Ink);
    style.prgColour = 15;
    QCOMPARE(RowPainter(style, fixedPalette()).progressColour(), QColor(0, 128, 0));
    // The item colour table holds 1 to 35; 0 is the list's own ink.
    QVERIFY(!ColourTable::colour(0).isValid() && !ColourTable::colour(36).isValid());
    QVERIFY(ColourTable::colour(35).isValid());
}

void TestRowPainter::contrast_data()
{
    QTest::addColumn<quint32>("colorRef");
    QTest::addColumn<QColor>("text");
    QTest::newRow("grey 0x646464 gets white") << 0x646464u << QColor(Qt::white);
    QTest::newRow("0x00FF00 in the pale range") << 0x00FF00u << QColor(Qt::black);
    QTest::newRow("0x00EFFF below the pale range") << 0x00EFFFu << QColor(Qt::white);
    QTest::newRow("0xC0C0C0 has red") << 0xC0C0C0u << QColor(Qt::black);
    QTest::newRow("pure blue 0xC10000") << 0xC10000u << QColor(Qt::white);
    QTest::newRow("0xB4338E below the threshold") << 0xB4338Eu << QColor(Qt::white);
}

void TestRowPainter::contrast()
{
    QFETCH(quint32, colorRef);
    QFETCH(QColor, text);
    QCOMPARE(ColourTable::contrastText(colorRef), text);
}

void TestRowPainter::textColours_data()
{
    QTest::addColumn<quint16>("colour");
    QTest::addColumn<quint16>("progress");
    QTest::addColumn<bool>("selected");
    QTest::addColumn<quint32>("flags");
    QTest::addColumn<QColor>("background");
    QTest::addColumn<QColor>("text");

    const quint32 grey = RowStyle::GreyCompleted;
    QTest::newRow("plain") << quint16(0) << quint16(0) << false << 0u << Base << Ink;
    QTest::newRow("coloured") << quint16(1) << quint16(0) << false << 0u << Base << QColor(0, 0, 255);
    QTest::newRow("coloured, completed, grey on") << quint16(1) << quint16(100) << false << grey << Base << GreyText;
    QTest::newRow("coloured, completed, grey off")
        << quint16(1) << quint16(100) << false << 0u << Base << QColor(0, 0, 255);
    QTest::newRow("selected plain") << quint16(0) << quint16(0) << true << 0u << Highlight << Base;
    QTest::newRow("selected colour 18") << quint16(18) << quint16(0) << true << 0u << QColor(240, 240, 0)
                                        << QColor(Qt::black);
    QTest::newRow("selected completed stays in contrast")
        << quint16(18) << quint16(100) << true << grey << QColor(240, 240, 0) << QColor(Qt::black);
}

void TestRowPainter::textColours()
{
    QFETCH(quint16, colour);
    QFETCH(quint16, progress);
    QFETCH(bool, selected);
    QFETCH(quint32, flags);
    QFETCH(QColor, background);
    QFETCH(QColor, text);
    const RowPainter painter(compactStyle(flags), fixedPalette());
    Item item(QStringLiteral("HHHHHHHH"));
    item.setColour(colour);
    item.storeProgress(progress);
    const Rendered r = render(painter, &item, selected ? RowPainter::Selected : 0);
    const QRect textArea = r.geometry.textRect();
    QCOMPARE(r.image.pixelColor(textArea.right() - 2, 1), background);
    QCOMPARE(r.image.pixelColor(textArea.left(), 1), background);
    QVERIFY2(countColour(r.image, textArea, text) > 20, "the name is drawn in the expected colour");
    for (const QColor &other : {Ink, GreyText, QColor(0, 0, 255), QColor(Qt::white)}) {
        if (other != text && other != background)
            QCOMPARE(countColour(r.image, textArea, other), 0);
    }
    // The columns in front of the text keep the list's background.
    QCOMPARE(r.image.pixelColor(r.geometry.glyphRect().left() + 1, 1), Base);
}

void TestRowPainter::darkBaseLightensDarkColours()
{
    QPalette dark = fixedPalette();
    const QColor darkBase(0x20, 0x20, 0x24);
    dark.setColor(QPalette::Base, darkBase);
    dark.setColor(QPalette::AlternateBase, darkBase);
    dark.setColor(QPalette::Text, Base);
    const RowPainter painter(compactStyle(), dark);
    Item item(QStringLiteral("HHHHHHHH"));
    item.setColour(1); // pure blue, unreadable on dark grey
    const Rendered r = render(painter, &item);
    const QRect textArea = r.geometry.textRect();
    QCOMPARE(r.image.pixelColor(textArea.right() - 2, 1), darkBase);
    QCOMPARE(countColour(r.image, textArea, QColor(0, 0, 255)), 0);
    const QColor light = QColor::fromHslF(QColor(0, 0, 255).hslHueF(), 1.0, 0.7).toRgb();
    QVERIFY(countColour(r.image, textArea, QColor(light.red(), light.green(), light.blue())) > 20);
}

void TestRowPainter::completedStyle()
{
    auto textArea = [](quint32 flags, quint16 progress) {
        const RowPainter painter(compactStyle(flags), fixedPalette());
        Item item(QStringLiteral("Finished task"));
        item.setStatusType(Item::NoStatus);
        item.storeProgress(progress);
        const Rendered r = render(painter, &item);
        return cell(r, r.geometry.textRect());
    };
    const QImage open = textArea(0, 0);
    // Completed items are struck out unless "Use normal font for completed items" is on.
    QVERIFY(textArea(0, 100) != open);
    QCOMPARE(textArea(RowStyle::NormalFontForCompleted, 100), open);
    QCOMPARE(textArea(0, 99), open);

    const RowPainter painter(compactStyle(), fixedPalette());
    Item item;
    item.storeProgress(100);
    QVERIFY(painter.itemFont(&item).strikeOut());
    item.setItalic(true);
    QVERIFY(painter.itemFont(&item).italic());
    QCOMPARE(painter.itemFont(&item).weight(), QFont::Normal);
    QCOMPARE(RowPainter(compactStyle(RowStyle::BoldFont), fixedPalette()).itemFont(&item).weight(), QFont::Bold);
}

void TestRowPainter::statistics()
{
    RowStyle style = compactStyle();
    style.showStatistics = true;
    const RowPainter painter(style, fixedPalette());
    std::unique_ptr<Item> parent(itemWithChildren({0, 50, 100}));
    QCOMPARE(painter.itemText(parent.get(), 0), QStringLiteral("Parent [1,1,1]"));
    std::unique_ptr<Item> mixed(itemWithChildren({0, 0, 1, 99, 100, 100, 100}));
    QCOMPARE(painter.itemText(mixed.get(), 0), QStringLiteral("Parent [2,2,3]"));
    // Not for flat rows.
    QCOMPARE(painter.itemText(parent.get(), RowPainter::Flat), QStringLiteral("Parent"));
    // Off: the name alone.
    const RowPainter plain(compactStyle(), fixedPalette());
    QCOMPARE(plain.itemText(parent.get(), 0), QStringLiteral("Parent"));
}

void TestRowPainter::expandGlyph()
{
    const RowPainter painter(compactStyle(), fixedPalette());
    std::unique_ptr<Item> parent(itemWithChildren({0}));
    auto glyphCell = [&](int state) {
        const Rendered r = render(painter, parent.get(), state);
        return cell(r, r.geometry.glyphRect());
    };
    QImage blank(16, 17, QImage::Format_RGB32);
    blank.fill(Base);
    const QImage collapsed = glyphCell(0);
    parent->setExpanded(true);
    const QImage expanded = glyphCell(0);
    const QImage alternative = glyphCell(RowPainter::AltGlyph);
    QVERIFY(collapsed != blank && expanded != blank && collapsed != expanded);
    QVERIFY(alternative != expanded && alternative != collapsed);
    // A flat row and a childless item leave the column empty.
    QCOMPARE(glyphCell(RowPainter::Flat), blank);
    Item leaf(QStringLiteral("Leaf"));
    const Rendered r = render(painter, &leaf);
    QCOMPARE(cell(r, r.geometry.glyphRect()), blank);
}

void TestRowPainter::focusRectangle()
{
    const RowPainter painter(compactStyle(), fixedPalette());
    Item item(QStringLiteral("x"));
    const int left = painter.itemGeometry(QRect(0, 0, 320, 17), &item, 1, 0, 0).textRect().left();
    // The rectangle starts two pixels left of the text, along the whole row.
    const Rendered plain = render(painter, &item);
    const Rendered focused = render(painter, &item, RowPainter::Focused);
    QCOMPARE(countColour(plain.image, QRect(left, 0, 1, 17), Ink), 0);
    QVERIFY(countColour(focused.image, QRect(left, 0, 1, 17), Ink) >= 5);
    QVERIFY(countColour(focused.image, QRect(200, 0, 60, 1), Ink) >= 20);
}

void TestRowPainter::dueDateColumn()
{
    RowStyle style = compactStyle();
    style.showDueDate = true;
    const RowPainter painter(style, fixedPalette());
    Item dated(QStringLiteral("Due"));
    SystemTime due;
    due.year = 2026;
    due.month = 3;
    due.day = 9;
    dated.setDueDate(due);
    Item undated(QStringLiteral("Due"));
    const Rendered a = render(painter, &dated);
    const Rendered b = render(painter, &undated);
    // The date column is there with or without a date; the glyph follows it.
    QCOMPARE(a.geometry.glyphRect().left(), painter.dateWidth());
    QCOMPARE(b.geometry.glyphRect().left(), painter.dateWidth());
    QVERIFY(countColour(a.image, a.geometry.dateRect(), Ink) > 5);
    QCOMPARE(countColour(b.image, b.geometry.dateRect(), Base), painter.dateWidth() * 17);
    QVERIFY(painter.dueDateText(&dated).contains(QLatin1Char('9')));
    // The year shows for another year only.
    const int thisYear = QDate::currentDate().year();
    for (int year : {thisYear, thisYear + 1, thisYear - 1}) {
        due.year = quint16(year);
        dated.setDueDate(due);
        const QString yy = QString::number(year % 100).rightJustified(2, QLatin1Char('0'));
        QCOMPARE(painter.dueDateText(&dated).endsWith(yy), year != thisYear);
    }
    // A month of 0 is no date, whatever the other fields hold.
    due.month = 0;
    dated.setDueDate(due);
    QCOMPARE(painter.dueDateText(&dated), QString());
}

void TestRowPainter::iconsAndLinkOverlay()
{
    const RowPainter painter(compactStyle(), fixedPalette());
    Item item(QStringLiteral("Linked"), 5);
    const Rendered without = render(painter, &item);
    item.setLinks({QStringLiteral("https://example.org/")});
    const Rendered with = render(painter, &item);
    QVERIFY(cell(without, without.geometry.iconRect()) != cell(with, with.geometry.iconRect()));
    // Hidden icon: the text moves left by the icon column and its gap.
    item.setShowIcon(false);
    const Rendered hidden = render(painter, &item);
    QVERIFY(hidden.geometry.iconRect().isEmpty());
    QCOMPARE(hidden.geometry.textRect().left(), with.geometry.textRect().left() - 17);
}

void TestRowPainter::everyIconNumberDraws()
{
    // Every number draws a picture, and the first distinctCount() pictures differ.
    const int count = IconSet::distinctCount();
    QVERIFY(count >= 100);
    QList<QImage> images;
    for (int i = 0; i < count; ++i) {
        const QImage image = IconSet::instance().icon(quint16(i), 16).toImage();
        int opaque = 0;
        for (int y = 0; y < 16; ++y)
            for (int x = 0; x < 16; ++x)
                opaque += qAlpha(image.pixel(x, y)) > 128;
        QVERIFY2(opaque > 30, qPrintable(QStringLiteral("icon %1 is nearly empty").arg(i)));
        images.append(image);
    }
    for (int i = 0; i < count; ++i)
        for (int j = i + 1; j < count; ++j)
            QVERIFY2(images[i] != images[j], qPrintable(QStringLiteral("icons %1 and %2 look alike").arg(i).arg(j)));
    // Numbers beyond repeat the set rather than draw nothing.
    QCOMPARE(IconSet::instance().icon(quint16(count + 3), 16).toImage(), images[3]);
    QCOMPARE(IconSet::instance().icon(826, 16).toImage(), images[826 % count]);
}

QTEST_MAIN(TestRowPainter)
#include "tst_rowpainter.moc"
