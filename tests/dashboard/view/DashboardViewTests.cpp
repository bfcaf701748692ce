#include "dashboard/view/DashboardView.h"

#include "appearance/view/Capsule.h"
#include "appearance/view/ElidedLabel.h"
#include "appearance/view/KestrinStyle.h"
#include "appearance/view/WrappedLabel.h"
#include "dashboard/view/DashboardSamples.h"

#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QTest>
#include <gtest/gtest.h>
#include <memory>

namespace kestrin {

namespace {

/// Every name that a screen reader finds below an item, in reading order.
void collectNames(QAccessibleInterface* item, QStringList& names) {
    for (int index = 0; index < item->childCount(); ++index) {
        QAccessibleInterface* child = item->child(index);
        if (!child || child->state().invisible) continue;
        const QString name = child->text(QAccessible::Name);
        if (!name.isEmpty()) names.append(name);
        collectNames(child, names);
    }
}

class TheDashboard : public testing::Test {
protected:
    void SetUp() override {
        QApplication::setStyle(new KestrinStyle);
        view = std::make_unique<DashboardView>(DashboardView::Actions{
            .startOrStop = [this] { done.append("start or stop"); },
            .checkNow = [this] { done.append("check now"); },
            .openSettings = [this] { done.append("settings"); },
            .quit = [this] { done.append("quit"); },
            .selectSite = [this](const std::string& id) { done.append("select " + QString::fromStdString(id)); },
            .showPage = [this](bool services) { done.append(services ? "services" : "sites"); },
            .openDownloadPage = [this] { done.append("download page"); }});
    }

    void show(const DashboardContent& content) {
        view->show(content);
        view->resize(view->sizeHint());
        view->QWidget::show();
        (void)QTest::qWaitForWindowActive(view.get());
    }

    [[nodiscard]] QStringList names() const {
        QStringList names;
        collectNames(QAccessible::queryAccessibleInterface(view.get()), names);
        return names;
    }

    [[nodiscard]] QPushButton* button(const QString& name) const {
        for (QPushButton* each : view->findChildren<QPushButton*>())
            if (each->isVisible() && each->accessibleName() == name) return each;
        return nullptr;
    }

    /// The controls that Tab comes to, from the first one on.
    [[nodiscard]] QList<QWidget*> tabOrder() {
        QList<QWidget*> order;
        view->focusFirstControl();
        while (QApplication::focusWidget() && !order.contains(QApplication::focusWidget())) {
            order.append(QApplication::focusWidget());
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        }
        return order;
    }

    QStringList done;
    std::unique_ptr<DashboardView> view;
};

} // namespace

TEST_F(TheDashboard, tellsScreenReadersEveryTextOfAWebsitesPage) {
    show(websiteContent());
    const QStringList read = names();
    for (const char* text : {"Kestrin", "Monitoring active", "Sites", "Services", "Example Shop",
             "https://shop.example.com", "UP", "10:42 AM", "Sampled uptime: 99.2%", "Checks: 8,412",
             "Response: 204ms", "Could not save check history: No space left on device", "Recent response history",
             "Last 30 checks: 26 successful, 4 failed.", "Successful", "Failed", "Last 30 checks", "Recent checks",
             "Up, HTTP 200, 10:42 AM, 204ms", "Down, The request timed out., 10:37 AM, 15.0s", "Detected incidents",
             "Recovered, Nov 21, 2025, 9:32 AM – 9:42 AM", "Checking every 5 minutes",
             "All activity ends when this app quits.", "Stop", "Check now", "5 minutes interval", "Settings",
             "Quit"})
        EXPECT_TRUE(read.contains(text)) << text;
    EXPECT_FALSE(read.contains("No checks recorded yet."));
    EXPECT_FALSE(read.contains("No failed periods recorded"));
}

TEST_F(TheDashboard, tellsScreenReadersEveryTextOfTheServicesPage) {
    show(servicesContent(2));
    const QStringList read = names();
    for (const char* text : {"Service Status", "Published public status feeds", "DEGRADED", "Service 0", "Degraded",
             "Delayed delivery for some messages", "Recent published status history",
             "Last 24 reports: 23 operational, 1 degraded, 0 outage, 0 maintenance, 0 unknown",
             "Run Check now to fetch published status", "Checked 10:42 AM · 187ms", "Official status, Service 1",
             "Published status reports; not independent API verification."})
        EXPECT_TRUE(read.contains(text)) << text;
}

TEST_F(TheDashboard, showsThePanelAlone) {
    show(websiteContent());
    show(panelContent());
    const QStringList read = names();
    EXPECT_TRUE(read.contains("Add your first website"));
    EXPECT_FALSE(read.contains("Recent checks"));
}

TEST_F(TheDashboard, passesOnWhatTheUserDid) {
    show(websiteContent());
    for (const char* name : {"Stop", "Check now", "Settings", "Quit"}) {
        ASSERT_TRUE(button(name)) << name;
        button(name)->click();
    }
    EXPECT_EQ(done, QStringList({"start or stop", "check now", "settings", "quit"}));
}

TEST_F(TheDashboard, obeysItsKeys) {
    show(websiteContent());
    QTest::keyClick(view.get(), Qt::Key_F5);
    QTest::keyClick(view.get(), Qt::Key_Comma, Qt::ControlModifier);
    QTest::keyClick(view.get(), Qt::Key_Q, Qt::ControlModifier);
    EXPECT_EQ(done, QStringList({"check now", "settings", "quit"}));
}

TEST_F(TheDashboard, ignoresTheKeyOfACommandThatIsDisabledAndSaysWhyItIs) {
    DashboardContent content = websiteContent();
    commandOf(content, CommandID::checkNow) = {
        .id = CommandID::checkNow, .label = "Checking", .enabled = false, .reason = "A check is running."};
    show(content);
    QTest::keyClick(view.get(), Qt::Key_F5);
    EXPECT_EQ(done, QStringList());
    ASSERT_TRUE(button("Checking"));
    EXPECT_FALSE(button("Checking")->isEnabled());
    EXPECT_TRUE(button("Checking")->toolTip().contains("A check is running."));
    EXPECT_EQ(button("Checking")->accessibleDescription(), "A check is running.");
}

TEST_F(TheDashboard, choosesAWebsite) {
    show(websiteContent());
    auto* picker = view->findChild<QComboBox*>();
    ASSERT_TRUE(picker);
    EXPECT_EQ(picker->currentText(), "Example Shop");
    EXPECT_EQ(QAccessible::queryAccessibleInterface(picker)->text(QAccessible::Description), "Site");
    EXPECT_EQ(picker->itemData(1, Qt::AccessibleTextRole), "Example Blog, DOWN");
    picker->setFocus();
    QTest::keyClick(picker, Qt::Key_Down);
    EXPECT_EQ(done, QStringList({"select two"}));
}

TEST_F(TheDashboard, changesThePageWhenTheUserDoesAndNotWhenTheModelDid) {
    show(websiteContent());
    show(servicesContent(1));
    EXPECT_EQ(done, QStringList());
    for (QAbstractButton* segment : view->findChildren<QAbstractButton*>())
        if (segment->text() == "Sites") segment->click();
    EXPECT_EQ(done, QStringList({"sites"}));
}

TEST_F(TheDashboard, opensTheDownloadPageFromTheBanner) {
    DashboardContent content = websiteContent();
    content.banner = UpdateBannerContent{.symbol = "arrow.down.circle.fill",
        .title = "Kestrin 2.1.0 is available",
        .subtitle = "Open the download page",
        .trailingSymbol = "chevron.right",
        .accessibleLabel = "Update to Kestrin 2.1.0, build 12",
        .accessibleHint = "Opens the Kestrin download page in your default browser"};
    show(content);
    EXPECT_TRUE(names().contains("Update to Kestrin 2.1.0, build 12"));
    view->focusFirstControl();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
    EXPECT_EQ(done, QStringList({"download page"}));
}

TEST_F(TheDashboard, isReachedByTabInReadingOrder) {
    show(websiteContent());
    QStringList order;
    for (const QWidget* widget : tabOrder())
        if (!widget->accessibleName().isEmpty()) order.append(widget->accessibleName());
    const QStringList wanted{"Site", "Last 30 checks: 26 successful, 4 failed.", "Up, HTTP 200, 10:42 AM, 204ms",
        "Down, The request timed out., 10:37 AM, 15.0s", "Stop", "Check now", "Settings", "Quit"};
    int position = -1;
    for (const QString& name : wanted) {
        const auto found = static_cast<int>(order.indexOf(name));
        EXPECT_GT(found, position) << name.toStdString() << " in " << order.join(" | ").toStdString();
        position = found;
    }
}

TEST_F(TheDashboard, describesTheBarThatTheArrowKeysHaveComeTo) {
    show(websiteContent());
    QWidget* chart = nullptr;
    for (QWidget* each : view->findChildren<QWidget*>())
        if (each->accessibleName().startsWith("Last 30 checks:")) chart = each;
    ASSERT_TRUE(chart);
    EXPECT_EQ(QAccessible::queryAccessibleInterface(chart)->role(), QAccessible::Chart);
    EXPECT_EQ(QAccessible::queryAccessibleInterface(chart)->childCount(), 0);
    chart->setFocus();
    EXPECT_EQ(chart->accessibleDescription(), "Check 29");
    QTest::keyClick(chart, Qt::Key_Left);
    EXPECT_EQ(chart->accessibleDescription(), "Check 28");
    QTest::keyClick(chart, Qt::Key_Home);
    EXPECT_EQ(chart->accessibleDescription(), "Check 0");
}

TEST_F(TheDashboard, cutsNoTextThatMayWrap) {
    for (const DashboardContent& content : {websiteContent(), servicesContent(3), panelContent()}) {
        show(content);
        for (const WrappedLabel* label : view->findChildren<WrappedLabel*>())
            if (label->isVisible()) {
                EXPECT_GE(label->height(), label->heightForWidth(label->width())) << label->text().toStdString();
            }
        for (const Capsule* capsule : view->findChildren<Capsule*>())
            if (capsule->isVisible()) {
                EXPECT_GE(capsule->width(), capsule->sizeHint().width());
            }
    }
}

TEST_F(TheDashboard, keepsTheHeaderInPlaceWhileThePageScrolls) {
    show(servicesContent(20));
    view->resize(view->width(), 600);
    auto* scroll = view->findChild<QScrollArea*>();
    ASSERT_GT(scroll->verticalScrollBar()->maximum(), 0);
    const auto* title = view->findChild<QWidget*>();
    const QPoint before = title->mapTo(view.get(), QPoint());
    scroll->verticalScrollBar()->setValue(scroll->verticalScrollBar()->maximum());
    EXPECT_EQ(title->mapTo(view.get(), QPoint()), before);
}

TEST_F(TheDashboard, drawsNothingAnewForContentThatIsTheSame) {
    class Paints : public QObject {
    public:
        bool eventFilter(QObject* /*watched*/, QEvent* event) override {
            if (event->type() == QEvent::Paint) ++count;
            return false;
        }
        int count = 0;
    };
    const auto settle = [] {
        for (int turn = 0; turn < 10; ++turn) {
            QCoreApplication::sendPostedEvents();
            QCoreApplication::processEvents();
        }
    };
    show(websiteContent());
    settle();
    Paints paints;
    for (QWidget* each : view->findChildren<QWidget*>())
        each->installEventFilter(&paints);
    view->show(websiteContent());
    settle();
    EXPECT_EQ(paints.count, 0);
}

} // namespace kestrin
