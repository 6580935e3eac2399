// The Preferences dialog: what it refuses, what OK saves, and the warning for
// a sharing address other than this computer's own.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTimer>
#include <map>

#include "desktop/services/NetsKey.h"
#include "desktop/window/PreferencesDialog.h"
#include "support/Fakes.h"

namespace tolvane::desktop {
namespace {

// A keyring that keeps what it is given and answers in a later turn.
struct MemoryKeyring : Keyring {
  std::map<QString, QString> kept;
  void read(const QString& service, const QString& entry, std::function<void(const Answer&)> done) override {
    Answer a;
    a.key = kept[service + '/' + entry];
    QTimer::singleShot(0, [a, done] { done(a); });
  }
  void write(const QString& service, const QString& entry, const QString& key,
             std::function<void(const Answer&)> done) override {
    kept[service + '/' + entry] = key;
    QTimer::singleShot(0, [done] { done(Answer{}); });
  }
};

struct PreferencesTest : ::testing::Test {
  test::FakeSettings settings;
  MemoryKeyring keyring;
  NetsKey netsKey{keyring};
  std::unique_ptr<PreferencesDialog> dialog;
  void open() { dialog = std::make_unique<PreferencesDialog>(settings, netsKey); }
  QLineEdit* field(const char* name) { return dialog->findChild<QLineEdit*>(QString::fromLatin1(name)); }
  QPushButton* ok() { return dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok); }
  bool warned() { return !dialog->findChild<QLabel*>(QStringLiteral("shareAddressWarning"))->isHidden(); }
};

TEST_F(PreferencesTest, RefusesWhatCannotWorkAndWarnsOfAnOpenAddress) {
  open();
  EXPECT_EQ(field("shareAddressField")->text(), QStringLiteral("127.0.0.1"));
  EXPECT_TRUE(ok()->isEnabled());
  EXPECT_FALSE(warned());

  field("shareAddressField")->setText(QStringLiteral("0.0.0.0"));
  EXPECT_TRUE(warned());
  EXPECT_TRUE(ok()->isEnabled());  // allowed, with the warning

  field("shareAddressField")->setText(QStringLiteral("localhost:4532"));
  EXPECT_FALSE(ok()->isEnabled());
  EXPECT_TRUE(dialog->problem().contains(QStringLiteral("not an IP address")));
  field("shareAddressField")->setText(QStringLiteral("::1"));
  EXPECT_FALSE(warned());
  EXPECT_TRUE(ok()->isEnabled());
  field("shareAllowedClientsField")->setText(QStringLiteral("192.168.1.20, shack-pc"));
  EXPECT_EQ(dialog->problem().toStdString(),
            "Rig sharing: the allowed clients must be IP addresses, such as 192.168.1.20.");
  field("shareAllowedClientsField")->setText(QStringLiteral("192.168.1.20, 192.168.1.21"));
  EXPECT_TRUE(ok()->isEnabled());

  auto spins = dialog->findChildren<QSpinBox*>();
  ASSERT_EQ(spins.size(), 2);
  spins[1]->setValue(spins[0]->value());
  EXPECT_FALSE(ok()->isEnabled());
  spins[1]->setValue(12345);

  field("service_sota")->setText(QStringLiteral("ftp://example.org"));
  EXPECT_FALSE(ok()->isEnabled());
  EXPECT_TRUE(dialog->problem().startsWith(QStringLiteral("SOTA spots: "))) << dialog->problem().toStdString();
  field("service_sota")->setText(QString());  // empty: the list is not fetched
  EXPECT_TRUE(ok()->isEnabled());
}

TEST_F(PreferencesTest, OkSavesSharingAndOnlyTheChangedAddresses) {
  settings.values["service/mw"] = "http://192.168.1.20:8080";
  open();
  EXPECT_EQ(field("service_mw")->text(), QStringLiteral("http://192.168.1.20:8080"));
  EXPECT_EQ(field("service_pota")->text(), QStringLiteral("https://api.pota.app"));
  dialog->findChildren<QCheckBox*>()[1]->setChecked(false);  // XML-RPC off
  field("shareAddressField")->setText(QStringLiteral("192.168.1.5"));
  field("service_nets")->setText(QStringLiteral("http://127.0.0.1:8000/"));
  QSignalSpy changed(dialog.get(), &PreferencesDialog::shareChanged);
  ok()->click();
  ASSERT_EQ(changed.count(), 1);
  EXPECT_EQ(settings.values["shareFlrig"], "0");
  EXPECT_EQ(settings.values["shareRigctld"], "1");
  EXPECT_EQ(settings.values["shareRigctldPort"], "4532");
  EXPECT_EQ(settings.values["shareAddress"], "192.168.1.5");
  EXPECT_EQ(settings.values["shareAllowedClients"], "");
  EXPECT_EQ(settings.values["service/nets"], "http://127.0.0.1:8000/");
  EXPECT_EQ(settings.values["service/mw"], "http://192.168.1.20:8080");
  EXPECT_EQ(settings.values.count("service/pota"), 0u);  // a default stays a default

  // Cancel keeps everything as it was.
  open();
  field("service_nets")->setText(QString());
  dialog->reject();
  EXPECT_EQ(settings.values["service/nets"], "http://127.0.0.1:8000/");
}

TEST_F(PreferencesTest, TheNetsKeyNeverReachesTheSettings) {
  open();
  field("netsKeyField")->setText(QStringLiteral("k3y-0f-the-net"));
  EXPECT_EQ(field("netsKeyField")->echoMode(), QLineEdit::Password);
  QSignalSpy stored(&netsKey, &NetsKey::stateChanged);
  ok()->click();
  ASSERT_TRUE(stored.count() > 0 || stored.wait(10000));
  EXPECT_EQ(netsKey.key(), QStringLiteral("k3y-0f-the-net"));
  EXPECT_EQ(keyring.kept[QStringLiteral("org.tolvane.Tolvane/nets-user-key")], QStringLiteral("k3y-0f-the-net"));
  for (const auto& [key, value] : settings.values) EXPECT_EQ(value.find("k3y"), std::string::npos) << key;
}

}  // namespace
}  // namespace tolvane::desktop
