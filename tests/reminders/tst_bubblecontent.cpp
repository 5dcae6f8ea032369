#include "reminders/bubblecontent.h"
#include "support/outline.h"

#include <QLocale>
#include <QTest>

namespace {

const auto colourRef = [](int index) -> quint32 { return index == 7 ? 0x123456 : 0xFFFFFF; };

// The top items of the outline, as the due reminders.
std::vector<Item *> due(Document &document, const char *outline)
{
    Outline::build(document.root(), outline);
    return {document.root()->children().begin(), document.root()->children().end()};
}

} // namespace

class TestBubbleContent : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates)); }
    void body()
    {
        Document one, two, three;
        QCOMPARE(BubbleContent::body(due(one, "Call Ann | rem=2024-03-05T10:00"), colourRef),
                 QStringLiteral("<html><body><b>Call Ann</b><br />3/5/24<p align=right><input type=button "
                                "name=\"cmd:1990\" value=\"Dismiss All\"></p></body></html>"));
        // The due date wins over the reminder's; colour inside italic; the name as typed, braces and all.
        QCOMPARE(BubbleContent::body(due(two, "Pay {1} rent | col=7 italic due=2024-04-01 rem=2024-03-05T10:00\n"
                                              "B&B | col=0 rem=2024-03-06T08:00"),
                                     colourRef),
                 QStringLiteral("<html><body><table border=\"1\" rules=\"None\" frame=\"Box\" cellspacing=\"0\" "
                                "cellpadding=\"1\" width=\"100%\"><tr><td><b><i><font color=\"#563412\">Pay {1} "
                                "rent</font></i></b><br />4/1/24<hr  size=\"1\" width=\"100%\" /></td></tr><tr><td>"
                                "<b>B&B</b><br />3/6/24</td></tr></table><p align=right><input type=button "
                                "name=\"cmd:1990\" value=\"Dismiss All\"></p></body></html>"));
        QCOMPARE(BubbleContent::body(due(three, "a\nb\nc"), colourRef),
                 QStringLiteral("<html><body><p><b>There are 3 reminders.</b></p><p align=\"right\"><a "
                                "href=\"cmd:1991\">View Reminders</a></p></body></html>"));
    }

    void notificationBodyAndCommands()
    {
        Document document;
        std::vector<Item *> items = due(document, "<Tom> & Jerry | col=7 rem=2024-03-05T10:00\nb | due=2024-04-01\n");
        QCOMPARE(BubbleContent::notificationBody(items),
                 QStringLiteral("<b>&lt;Tom&gt; &amp; Jerry</b> 3/5/24\n<b>b</b> 4/1/24"));
        items.push_back(items[0]);
        QCOMPARE(BubbleContent::notificationBody(items), QStringLiteral("There are 3 reminders."));
        using BubbleContent::commandOf; // what a link of the bubble asks for
        QCOMPARE(QList<int>({commandOf("cmd:1991"), commandOf("cmd:19x"), commandOf("http://cmd:1990")}),
                 QList<int>({1991, 0, 0}));
    }
};

QTEST_GUILESS_MAIN(TestBubbleContent)
#include "tst_bubblecontent.moc"
