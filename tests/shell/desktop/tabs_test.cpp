// The other tabs and the two sheets on this machine's real data.
#include "app/foundation/local_calendar.h"
#include "app/history/history_file.h"
#include "shell/desktop/command_palette.h"
#include "shell/desktop/details_tab.h"
#include "shell/desktop/history_tab.h"
#include "shell/desktop/startup_tab.h"
#include "shell/desktop/why_sheet.h"
#include "tests/shell/desktop/window_fixture.h"
#include "tests/support/spinning_children.h"

#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>
#include <QTreeWidget>
#include <ctime>

namespace loadwarden {
namespace {

constexpr double day = 24 * 60 * 60;

class TabsTest : public support::WindowTest {
protected:
    // Three apps, last seen today, four days ago and twenty days ago, and an
    // autostart entry of the user's own.
    void prepareHome() override {
        const Date now = static_cast<Date>(std::time(nullptr));
        UsageHistory history;
        const auto seen = [&](const char* key, const char* name, Date when) {
            history.record({{.key = key, .name = name, .cpuPercent = 50, .memoryBytes = 1'000'000}},
                           when, localCalendar(), 60);
        };
        seen("exe:/usr/bin/today", "today", now);
        seen("exe:/usr/bin/week", "this week", now - 4 * day);
        seen("exe:/usr/bin/month", "this month", now - 20 * day);
        ASSERT_EQ(HistoryFile().save(history), std::nullopt);

        QDir().mkpath(home.filePath("config/autostart"));
        QFile entry(home.filePath("config/autostart/notes.desktop"));
        ASSERT_TRUE(entry.open(QIODevice::WriteOnly));
        entry.write("[Desktop Entry]\nType=Application\nName=Notes\nExec=/usr/bin/notes\n");
    }

    template <typename Tab>
    Tab& showing(Tab& tab) {
        window->tabs().setCurrentWidget(&tab);
        return tab;
    }

    QTreeWidgetItem* rowNamed(QTreeWidget& table, const QString& name) {
        const auto found = table.findItems(name, Qt::MatchExactly, 0);
        return found.isEmpty() ? nullptr : found.front();
    }
};

TEST_F(TabsTest, HistoryShowsTheChosenDaysAndCanBeDeleted) {
    HistoryTab& tab = showing(window->historyTab());
    EXPECT_EQ(tab.table().topLevelItemCount(), 1);
    support::saveScreenshot(*window, "history-today");
    tab.range().setCurrentIndex(1);
    EXPECT_EQ(model->historyDays(), 7);
    EXPECT_EQ(tab.table().topLevelItemCount(), 2);
    tab.range().setCurrentIndex(2);
    EXPECT_EQ(tab.table().topLevelItemCount(), 3);
    ASSERT_NE(rowNamed(tab.table(), "this month"), nullptr);
    EXPECT_EQ(rowNamed(tab.table(), "this month")->text(1), "30s"); // half a core for a minute
    EXPECT_EQ(rowNamed(tab.table(), "this month")->text(3), "-");   // no energy figure
    support::saveScreenshot(*window, "history-month");

    support::answerNextMessageBox("Delete History", "history-delete-confirmation");
    QTest::mouseClick(tab.findChild<QPushButton*>(), Qt::LeftButton);
    EXPECT_EQ(tab.table().topLevelItemCount(), 0);
    EXPECT_TRUE(tab.findChild<QLabel*>()->isVisible());
    support::saveScreenshot(*window, "history-empty");
}

TEST_F(TabsTest, AUserAutostartEntryIsSwitchedFromTheStartupTab) {
    StartupTab& tab = showing(window->startupTab());
    ASSERT_TRUE(support::processEventsUntil([&] { return rowNamed(tab.table(), "Notes"); }));
    tab.table().setCurrentItem(rowNamed(tab.table(), "Notes"));
    ASSERT_TRUE(tab.switchButton().isEnabled());
    EXPECT_EQ(tab.switchButton().text(), "Turn Off");
    support::saveScreenshot(*window, "startup-selected");
    tab.switchButton().click();
    ASSERT_TRUE(support::processEventsUntil(
        [&] { return rowNamed(tab.table(), "Notes")->text(3) == "Turned off"; }));
    EXPECT_EQ(tab.switchButton().text(), "Turn On");
    support::saveScreenshot(*window, "startup-turned-off");
    QFile entry(home.filePath("config/autostart/notes.desktop"));
    ASSERT_TRUE(entry.open(QIODevice::ReadOnly));
    EXPECT_TRUE(entry.readAll().contains("Hidden=true"));

    // Another user's or the system's items say why they stay as they are.
    for (int row = 0; row < tab.table().topLevelItemCount(); ++row) {
        tab.table().setCurrentItem(tab.table().topLevelItem(row));
        if (!tab.switchButton().isVisible()) {
            EXPECT_FALSE(tab.note().text().isEmpty());
            support::saveScreenshot(*window, "startup-administrator");
            break;
        }
    }
}

TEST_F(TabsTest, DetailsListEveryProcessAndReadWhatTheSelectedOneHasOpen) {
    DetailsTab& tab = showing(window->detailsTab());
    ASSERT_TRUE(support::processEventsUntil([&] { return tab.rowOf(spinner) != nullptr; }));
    tab.table().setCurrentItem(tab.rowOf(spinner));
    EXPECT_EQ(model->detailSelection(), spinner);
    // Open files are read in the background and filled in.
    ASSERT_TRUE(support::processEventsUntil([&] { return tab.rowOf(spinner)->text(10) != "-"; }));
    EXPECT_GE(tab.rowOf(spinner)->text(10).toInt(), 3);
    EXPECT_EQ(tab.rowOf(spinner)->text(11), "none");
    tab.table().sortItems(0, Qt::AscendingOrder);
    const QTreeWidgetItem* first = tab.table().topLevelItem(0);
    const QTreeWidgetItem* second = tab.table().topLevelItem(1);
    EXPECT_LT(first->text(0).toInt(), second->text(0).toInt()); // by number, not by text
    support::saveScreenshot(*window, "details");
}

TEST_F(TabsTest, TheWhySheetPausesABusyProcess) {
    ASSERT_TRUE(support::processEventsUntil([&] {
        const QModelIndex row = spinnerRow();
        return row.isValid() && table().groupAt(row)->totalCPU() >= 50;
    }));
    window->showWhySheet();
    WhySheet& sheet = window->whySheet();
    const auto pauseFix = [&]() -> std::optional<std::size_t> {
        for (std::size_t index = 0; index < sheet.causes().size(); ++index) {
            const auto& fix = sheet.causes()[index].fix;
            if (fix && fix->kind == Cause::Fix::Kind::pause &&
                fix->key == "pid:" + std::to_string(spinner)) {
                return index;
            }
        }
        return std::nullopt;
    };
    ASSERT_TRUE(support::processEventsUntil([&] { return pauseFix().has_value(); }));
    ASSERT_TRUE(support::processEventsUntil([&] {
        const auto* fix = sheet.findChild<QPushButton*>(QString(), Qt::FindChildrenRecursively);
        return fix && fix->isVisible();
    }));
    support::saveScreenshot(sheet, "why-sheet");
    sheet.applyFix(*pauseFix());
    EXPECT_EQ(support::settlesAt(spinner, 'T'), 'T');
    sheet.close();
}

TEST_F(TabsTest, ThePaletteFindsAnAppByAFragmentAndPausesIt) {
    ASSERT_TRUE(spinnerRow().isValid());
    window->showPalette();
    CommandPalette& palette = window->palette();
    EXPECT_EQ(model->sheet(), Sheet::palette);
    // The spinner bears this program's name; only it may be paused.
    QTest::keyClicks(&palette.field(), "pause desk");
    support::saveScreenshot(palette, "palette-pause");
    // Other copies of this program may be listed too: the arrows reach the spinner.
    const QString wanted = "Pause desktop_tests  —  pid " + QString::number(spinner) + " ";
    for (int row = 0;
         row < palette.list().count() && !palette.list().currentItem()->text().startsWith(wanted);
         ++row) {
        QTest::keyClick(&palette.field(), Qt::Key_Down);
    }
    ASSERT_TRUE(palette.list().currentItem()->text().startsWith(wanted));
    QTest::keyClick(&palette.field(), Qt::Key_Return);
    EXPECT_FALSE(palette.isVisible());
    EXPECT_EQ(support::settlesAt(spinner, 'T'), 'T');

    // The program itself can be shown, never acted on.
    window->showPalette();
    QTest::keyClicks(&palette.field(), "desk");
    for (int row = 0; row < palette.list().count(); ++row) {
        const QString line = palette.list().item(row)->text();
        if (line.contains("pid " + QString::number(getpid()))) {
            EXPECT_TRUE(line.startsWith("Show ")) << line.toStdString();
        }
    }
    support::saveScreenshot(palette, "palette-self");
    QTest::keyClick(&palette.field(), Qt::Key_Escape);
    EXPECT_FALSE(palette.isVisible());
    EXPECT_EQ(model->sheet(), std::nullopt);
}

// Each tab in a light and a dark palette, at this run's scale: a second run
// at twice the scale makes the pictures for high-density screens.
TEST_F(TabsTest, ShortcutsReachEveryTabInLightAndDark) {
    // Some rates and a few points in the graphs make the pictures worth a look.
    ASSERT_TRUE(support::processEventsUntil([&] { return model->sampleCount() >= 4; }));
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    const std::string scale = window->devicePixelRatioF() > 1 ? "@2x" : "";
    const QPalette light = QApplication::palette();
    for (const auto& [palette, name] :
         {std::pair(light, std::string()), std::pair(support::darkPalette(), std::string("-dark"))}) {
        QApplication::setPalette(palette);
        for (const Tab tab : allTabs) {
            QTest::keyClick(window.get(),
                            static_cast<Qt::Key>(Qt::Key_1 + static_cast<int>(tab)),
                            Qt::ControlModifier);
            EXPECT_EQ(window->tabs().currentIndex(), static_cast<int>(tab));
            EXPECT_EQ(model->tab(), tab);
            QTest::qWait(100); // a tab catches up on what it missed while hidden
            support::saveScreenshot(*window, "tab-" + std::string(rawValue(tab)) + name + scale);
        }
    }
    QApplication::setPalette(light);
}

} // namespace
} // namespace loadwarden
