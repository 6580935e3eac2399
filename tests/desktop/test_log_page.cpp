// The hunter's log in the window: the Log tab is made when first shown,
// Ctrl+L and a spot row's Log button open the form with the spot, the
// contacts land in the database file and are there after a restart, and the
// page searches, deletes, undoes, exports and imports.
#include <gtest/gtest.h>

#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTabWidget>
#include <QTableView>
#include <QTemporaryDir>
#include <QtTest>

#include "desktop/services/SqliteLogStore.h"
#include "desktop/services/StoreServices.h"
#include "desktop/window/Binder.h"
#include "desktop/window/LogDesk.h"
#include "desktop/window/MainWindow.h"
#include "desktop/window/TableView.h"
#include "support/Harness.h"

namespace tolvane::desktop {
namespace {

struct LogPageTest : ::testing::Test {
  QTemporaryDir dir;
  test::Rig rig;
  Binder binder{rig.window};
  MainWindow window{binder};
  test::FakeLog log;
  // The log's file through the store module as built.
  StoreServices store{QStringLiteral(TOLVANE_STORE_MODULE), log};
  LogDesk::OpenStore open = [this](const QString& p) { return store.openLog(p); };
  std::unique_ptr<LogDesk> desk;
  std::vector<log::Contact> drafts;  // what the form was opened with
  std::string typedComment = "tnx";  // what the operator adds before Save

  QString path() const { return dir.filePath(QStringLiteral("data/log.sqlite")); }
  void SetUp() override {
    rig.openPort();
    rig.c().tlAorB = "A";
    rig.c().tlFreqA = "007030000";
    rig.c().tlMode = "CW-U";
    rig.c().tlCall = "N0CALL";
    rig.c().setWallClock([] { return 1795576500.0; });  // 2026-11-25 03:15:00 UTC
    rig.c().tlPotaArray = {{"K7CAR", "14285", "SSB", "", "Park", "3", "0.0", "0.0", "US-WA", "US-3844"}};
    rig.at("potaTable").reloadData();
    desk = std::make_unique<LogDesk>(window, binder, rig.c(), rig.files, rig.alerts, open, path());
  }
  // The form saves what it was given, with the operator's comment.
  void answerForms() {
    desk->page()->setForm([this](const log::Contact& draft, const QString&) -> std::optional<log::Contact> {
      drafts.push_back(draft);
      log::Contact saved = draft;
      if (saved.call.empty()) saved.call = "W1AW";
      saved.comment = typedComment;
      return saved;
    });
  }
  QAction* action(const char* name) { return window.findChild<QAction*>(QString::fromLatin1(name)); }
};

TEST_F(LogPageTest, CtrlLOnASpotLogsItAndTheContactOutlivesTheProgram) {
  EXPECT_EQ(window.findChild<LogPage*>(), nullptr);  // nothing made before it is needed
  answerForms();
  rig.at("mainTab").selectIndex(5);
  rig.at("spotsTab").selectIndex(0);
  binder.widgetAs<QTableView>("potaTable")->selectRow(0);
  QAction* ctrlL = action("logContactAction");
  ASSERT_NE(ctrlL, nullptr);
  EXPECT_EQ(ctrlL->shortcut().toString(), QStringLiteral("Ctrl+L"));
  ctrlL->trigger();
  ASSERT_EQ(drafts.size(), 1u);
  EXPECT_EQ(drafts[0].call, "K7CAR");
  EXPECT_EQ(drafts[0].reference, "US-3844");
  EXPECT_EQ(drafts[0].frequencyHz, 14285000);
  EXPECT_EQ(drafts[0].rstSent, "59");
  EXPECT_EQ(drafts[0].ownCall, "N0CALL");

  // Away from the spots, the form starts from the radio.
  rig.at("mainTab").selectIndex(1);
  ctrlL->trigger();
  ASSERT_EQ(drafts.size(), 2u);
  EXPECT_EQ(drafts[1].call, "");
  EXPECT_EQ(drafts[1].frequencyHz, 7030000);
  EXPECT_EQ(drafts[1].mode, "CW");
  EXPECT_EQ(drafts[1].rstSent, "599");

  // The row's own Log button.
  ASSERT_TRUE(ui::clickInCell(rig.at("potaTable"), "log", 0));
  ASSERT_EQ(drafts.size(), 3u);
  EXPECT_EQ(drafts[2].reference, "US-3844");

  rig.at("mainTab").selectIndex(6);
  QCoreApplication::processEvents();
  LogPage* page = window.findChild<LogPage*>();
  ASSERT_NE(page, nullptr);
  EXPECT_EQ(page->statusText(), "3 contacts");
  // The spot just logged is marked worked in its list.
  EXPECT_EQ(rig.c().rowMarks(rig.at("potaTable"), 0), "worked");
  EXPECT_EQ(page->table()->model()->index(0, 1).data().toString(), "K7CAR");
  EXPECT_EQ(page->table()->model()->headerData(2, Qt::Horizontal).toString(), "Park/Summit");

  desk.reset();  // the program ends
  SqliteLogStore again(path());
  std::vector<log::Contact> stored;
  std::string error;
  ASSERT_TRUE(again.load(stored, error)) << error;
  ASSERT_EQ(stored.size(), 3u);
  EXPECT_EQ(stored[0].call, "K7CAR");
  EXPECT_EQ(stored[0].sig, "POTA");
  EXPECT_EQ(stored[0].comment, "tnx");
  EXPECT_EQ(stored[0].utc, 1795576500);
}

TEST_F(LogPageTest, SearchDeleteUndoExportAndImport) {
  answerForms();
  LogPage* page = desk->page();
  page->logContact(rig.c().contactDraft("potaTable", 0));
  typedComment = "second";
  page->logContact(rig.c().contactDraft());
  page->searchField()->setText(QStringLiteral("k7c"));
  EXPECT_EQ(page->statusText(), "1 of 2 contacts shown");
  page->table()->selectRow(0);
  page->deleteSelected();
  EXPECT_EQ(page->statusText(), "0 of 1 contact shown");
  page->undo();
  EXPECT_EQ(page->statusText(), "1 of 2 contacts shown");
  page->searchField()->clear();

  rig.files.chosen = "/home/op/log.adi";
  page->exportAdif();
  EXPECT_EQ(page->statusText(), "Exported 2 contacts to /home/op/log.adi.");
  const std::string& file = rig.files.files["/home/op/log.adi"];
  EXPECT_NE(file.find("<CALL:5>K7CAR <QSO_DATE:8>20261125 <TIME_ON:6>031500 <BAND:3>20m <FREQ:6>14.285 "),
            std::string::npos);
  EXPECT_NE(file.find("<POTA_REF:7>US-3844 <SIG:4>POTA <SIG_INFO:7>US-3844 <COMMENT:3>tnx <EOR>"), std::string::npos);

  rig.files.files["/home/op/log.adi"] += "<CALL:4>N7XY<MODE:2>CW<EOR>\n";
  page->importAdif();
  EXPECT_EQ(page->statusText(),
            "Imported 0 contacts from /home/op/log.adi; 2 were already in the log; 1 record could not be read.");
  ASSERT_EQ(rig.alerts.shown.size(), 1u);
  EXPECT_EQ(rig.alerts.shown[0].informativeText, "Record 3 (N7XY): no QSO_DATE\n");
}

TEST_F(LogPageTest, ALogFromANewerProgramIsLeftAlone) {
  desk.reset();
  {
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("newer"));
    QDir().mkpath(dir.filePath(QStringLiteral("data")));
    db.setDatabaseName(path());
    ASSERT_TRUE(db.open());
    QSqlQuery(db).exec(QStringLiteral("PRAGMA user_version=7"));
    db.close();
  }
  QSqlDatabase::removeDatabase(QStringLiteral("newer"));
  desk = std::make_unique<LogDesk>(window, binder, rig.c(), rig.files, rig.alerts, open, path());
  EXPECT_EQ(rig.c().rowMarks(rig.at("potaTable"), 0), "");  // the spots are shown, unmarked
  EXPECT_TRUE(rig.alerts.shown.empty());                    // and nobody is told before the page opens
  desk->page();
  ASSERT_EQ(rig.alerts.shown.size(), 1u);
  EXPECT_EQ(rig.alerts.shown[0].message, "The log could not be opened.");
  EXPECT_NE(rig.alerts.shown[0].informativeText.find("written by a newer version of Tolvane (schema 7)"),
            std::string::npos);
  answerForms();
  desk->page()->logContact(rig.c().contactDraft());
  EXPECT_EQ(rig.alerts.shown.back().message, "The contact could not be saved.");
}

}  // namespace
}  // namespace tolvane::desktop
