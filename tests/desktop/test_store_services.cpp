// The log's file and the keyring from the store module: keyring calls made
// before it is loaded wait and go out in order; a module that cannot be
// loaded leaves a log that says why and a nets key kept for this run only.
#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTest>
#include <string>
#include <vector>

#include "desktop/services/NetsKey.h"
#include "desktop/services/StoreServices.h"
#include "support/Fakes.h"

namespace tolvane::desktop {
namespace {

std::vector<std::string> asked;

class RecordingStore : public StoreModule, Keyring {
 public:
  std::unique_ptr<platform::LogStore> openLog(const QString& path) override {
    asked.push_back("log " + path.toStdString());
    return nullptr;
  }
  Keyring& keyring() override { return *this; }
  void read(const QString& service, const QString& entry, std::function<void(const Answer&)> done) override {
    asked.push_back("read " + service.toStdString() + " " + entry.toStdString());
    Answer a;
    a.key = QStringLiteral("kept-key");
    done(a);
  }
  void write(const QString&, const QString& entry, const QString& key,
             std::function<void(const Answer&)> done) override {
    asked.push_back("write " + entry.toStdString() + " " + key.toStdString());
    done(Answer{});
  }
};

StoreModule* openRecording() { return new RecordingStore; }

TEST(StoreServices, KeyringCallsWaitForTheModuleAndTheLogLoadsItAtOnce) {
  asked.clear();
  test::FakeLog log;
  int finds = 0;
  StoreServices store(
      [&finds] {
        ++finds;
        return ModuleLoader::Found{reinterpret_cast<void*>(&openRecording), {}};
      },
      log);
  NetsKey key(store);
  QSignalSpy loaded(&key, &NetsKey::loaded);
  key.load();
  key.store(QStringLiteral("n3w"));
  QTest::qWait(20);
  EXPECT_EQ(finds, 0);  // asking does not load: that waits for the first frame
  EXPECT_TRUE(asked.empty());
  EXPECT_EQ(loaded.count(), 0);

  // The log cannot wait: opening it loads the module there and then, and
  // what waited goes out first.
  store.openLog(QStringLiteral("/tmp/log.sqlite"));
  EXPECT_EQ(finds, 1);
  EXPECT_EQ(asked, (std::vector<std::string>{"read org.tolvane.Tolvane nets-user-key", "write nets-user-key n3w",
                                             "log /tmp/log.sqlite"}));
  // The key stored while the read waited is the newer one.
  ASSERT_EQ(loaded.count(), 1);
  EXPECT_EQ(loaded.at(0).at(0).toString(), QStringLiteral("n3w"));
  EXPECT_EQ(key.key(), QStringLiteral("n3w"));
  EXPECT_FALSE(key.runOnly());
  store.load();  // loaded already: nothing more
  QTest::qWait(20);
  EXPECT_EQ(finds, 1);
  EXPECT_TRUE(log.lines.empty());
}

TEST(StoreServices, AModuleThatCannotBeLoadedLeavesALogThatSaysWhyAndARunOnlyKey) {
  test::FakeLog log;
  StoreServices store(QStringLiteral("/nonexistent/libtolvane-store.so"), log);
  NetsKey key(store);
  QSignalSpy changed(&key, &NetsKey::stateChanged);
  key.load();
  store.load();
  ASSERT_TRUE(changed.wait(5000));
  ASSERT_EQ(log.lines.size(), 1u);
  EXPECT_EQ(log.lines[0], "The log and the keyring are off: there is no /nonexistent/libtolvane-store.so");
  EXPECT_TRUE(key.runOnly());
  EXPECT_EQ(key.stateText().toStdString(),
            "No keyring service answered, so the key is kept for this run only. (the keyring's module could not "
            "be loaded: there is no /nonexistent/libtolvane-store.so)");
  // The key is still kept for the run, answered in a later turn.
  key.store(QStringLiteral("k3y"));
  EXPECT_EQ(key.key(), QStringLiteral("k3y"));

  const auto logStore = store.openLog(QStringLiteral("/tmp/log.sqlite"));
  std::vector<log::Contact> contacts;
  std::string error;
  EXPECT_FALSE(logStore->load(contacts, error));
  EXPECT_EQ(error, "The log's module could not be loaded: there is no /nonexistent/libtolvane-store.so");
  EXPECT_FALSE(logStore->insert(contacts, error));
  EXPECT_EQ(log.lines.size(), 1u);
}

}  // namespace
}  // namespace tolvane::desktop
