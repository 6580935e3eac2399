#include "desktop/window/PreferencesDialog.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QVBoxLayout>

#include "desktop/services/NetsKey.h"
#include "desktop/window/Binder.h"
#include "spots/WebLists.h"

namespace tolvane::desktop {

namespace {

QSpinBox* portBox(int value) {
  auto* box = new QSpinBox;
  box->setRange(1, 65535);
  box->setValue(value);
  return box;
}

QLabel* note(const QString& text) {
  auto* label = new QLabel(text);
  label->setWordWrap(true);
  return label;
}

// The address a list is fetched from now: the saved one, else the default.
QString savedAddress(const platform::SettingsStore& settings, const spots::Service& s) {
  if (auto saved = settings.value(spots::serviceSettingsKey(s.name))) return QString::fromStdString(*saved);
  return QString::fromUtf8(s.defaultAddress);
}

}  // namespace

PreferencesDialog::PreferencesDialog(platform::SettingsStore& settings, NetsKey& netsKey, QWidget* parent)
    : QDialog(parent), settings_(settings), netsKey_(netsKey) {
  setWindowTitle(QStringLiteral("Preferences"));
  setObjectName(QStringLiteral("preferencesDialog"));
  setMinimumWidth(560);
  auto* layout = new QVBoxLayout(this);
  pages_ = new QTabWidget;
  nameTabStacks(pages_);
  layout->addWidget(pages_);
  problemLabel_ = note(QString());
  problemLabel_->setObjectName(QStringLiteral("preferencesProblem"));
  problemLabel_->setStyleSheet(QStringLiteral("color: #b00020;"));
  problemLabel_->hide();
  layout->addWidget(problemLabel_);
  buttons_ = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
  connect(buttons_, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons_, &QDialogButtonBox::rejected, this, &QDialog::reject);
  layout->addWidget(buttons_);

  addPage(buildSharingPage(), QStringLiteral("Rig sharing"));
  addPage(buildServicesPage(), QStringLiteral("Web services"));
  check();
}

void PreferencesDialog::addPage(QWidget* page, const QString& title) { pages_->addTab(page, title); }

QWidget* PreferencesDialog::buildSharingPage() {
  const ShareConfig c = ShareConfig::load(settings_);
  auto* page = new QWidget;
  auto* form = new QFormLayout(page);
  form->addRow(note(QStringLiteral(
      "Digital-mode programs and loggers reach the radio through Tolvane while it holds the serial port. "
      "Point them at a network rig on this computer (rigctld protocol) or at an XML-RPC rig server.")));

  rigctldOn_ = new QCheckBox(QStringLiteral("Serve the &rigctld protocol"));
  rigctldOn_->setChecked(c.rigctldOn);
  rigctldPort_ = portBox(c.rigctldPort);
  rigctldPort_->setAccessibleName(QStringLiteral("rigctld port"));
  form->addRow(rigctldOn_, rigctldPort_);
  flrigOn_ = new QCheckBox(QStringLiteral("Serve &XML-RPC"));
  flrigOn_->setChecked(c.flrigOn);
  flrigPort_ = portBox(c.flrigPort);
  flrigPort_->setAccessibleName(QStringLiteral("XML-RPC port"));
  form->addRow(flrigOn_, flrigPort_);
  connect(rigctldOn_, &QCheckBox::toggled, rigctldPort_, &QWidget::setEnabled);
  connect(flrigOn_, &QCheckBox::toggled, flrigPort_, &QWidget::setEnabled);
  rigctldPort_->setEnabled(c.rigctldOn);
  flrigPort_->setEnabled(c.flrigOn);

  address_ = new QLineEdit(c.address);
  address_->setObjectName(QStringLiteral("shareAddressField"));
  address_->setPlaceholderText(QStringLiteral("127.0.0.1"));
  address_->setToolTip(QStringLiteral("127.0.0.1: this computer only. 0.0.0.0: every network this computer is on."));
  form->addRow(QStringLiteral("Listen on &address:"), address_);
  addressWarning_ = note(
      QStringLiteral("Warning: anyone who can reach this computer on that network can then tune the radio and key the "
                     "transmitter. There is no password."));
  addressWarning_->setObjectName(QStringLiteral("shareAddressWarning"));
  addressWarning_->setStyleSheet(QStringLiteral("color: #b00020; font-weight: bold;"));
  form->addRow(addressWarning_);

  transceiver_ = new QLineEdit(c.transceiver);
  transceiver_->setToolTip(QStringLiteral("The radio's name as XML-RPC clients are told it."));
  form->addRow(QStringLiteral("&Transceiver name:"), transceiver_);

  allowedClients_ = new QLineEdit(c.allowedClients);
  allowedClients_->setObjectName(QStringLiteral("shareAllowedClientsField"));
  allowedClients_->setPlaceholderText(QStringLiteral("every address"));
  allowedClients_->setToolTip(
      QStringLiteral("The addresses of the computers whose programs may connect, separated by spaces or commas. "
                     "Empty: any program that can reach the address above."));
  form->addRow(QStringLiteral("Allowed &clients:"), allowedClients_);

  connect(address_, &QLineEdit::textChanged, this, &PreferencesDialog::check);
  connect(allowedClients_, &QLineEdit::textChanged, this, &PreferencesDialog::check);
  for (QSpinBox* box : {rigctldPort_, flrigPort_})
    connect(box, &QSpinBox::valueChanged, this, &PreferencesDialog::check);
  for (QCheckBox* box : {rigctldOn_, flrigOn_}) connect(box, &QCheckBox::toggled, this, &PreferencesDialog::check);
  connect(transceiver_, &QLineEdit::textChanged, this, &PreferencesDialog::check);
  return page;
}

QWidget* PreferencesDialog::buildServicesPage() {
  auto* page = new QWidget;
  auto* form = new QFormLayout(page);
  form->addRow(note(QStringLiteral(
      "Where each list is fetched from: an http or https address. An empty address means the list is not "
      "fetched. Changes apply at the list's next refresh.")));
  for (const spots::Service& s : spots::kServices) {
    auto* edit = new QLineEdit(savedAddress(settings_, s));
    edit->setObjectName(QStringLiteral("service_") + QString::fromUtf8(s.name));
    if (*s.defaultAddress) edit->setPlaceholderText(QString::fromUtf8(s.defaultAddress));
    edit->setAccessibleName(QString::fromUtf8(s.title) + QStringLiteral(" address"));
    form->addRow(QString::fromUtf8(s.title) + QStringLiteral(":"), edit);
    services_.push_back({s.name, edit});
    connect(edit, &QLineEdit::textChanged, this, &PreferencesDialog::check);
  }
  auto* defaults = new QPushButton(QStringLiteral("Restore &default addresses"));
  connect(defaults, &QPushButton::clicked, this, [this] {
    for (const ServiceField& f : services_)
      if (const spots::Service* s = spots::findService(f.name)) f.edit->setText(QString::fromUtf8(s->defaultAddress));
  });
  auto* row = new QHBoxLayout;
  row->addStretch();
  row->addWidget(defaults);
  form->addRow(row);

  netsKeyEdit_ = new QLineEdit(netsKey_.key());
  netsKeyEdit_->setObjectName(QStringLiteral("netsKeyField"));
  netsKeyEdit_->setEchoMode(QLineEdit::Password);
  netsKeyEdit_->setAccessibleName(QStringLiteral("Nets user key"));
  form->addRow(QStringLiteral("Nets user &key:"), netsKeyEdit_);
  netsKeyState_ = note(netsKey_.stateText());
  netsKeyState_->setObjectName(QStringLiteral("netsKeyState"));
  form->addRow(netsKeyState_);
  connect(&netsKey_, &NetsKey::stateChanged, this, [this] { netsKeyState_->setText(netsKey_.stateText()); });
  return page;
}

void PreferencesDialog::addWatchListPage(const std::vector<std::string>& entries) {
  auto* page = new QWidget;
  auto* v = new QVBoxLayout(page);
  auto* about = note(QStringLiteral(
      "Call signs and park or summit references to watch, one a line. A trailing * also matches portable forms "
      "(K7CAR* matches K7CAR/P) and every reference that begins so (W7W/* or US-*). A watched station new in a "
      "spot list gives a desktop notification, the alert sound and, with the voice guide on, its call and band."));
  v->addWidget(about);
  QString text;
  for (const std::string& e : entries) text += QString::fromStdString(e) + QLatin1Char('\n');
  watchList_ = new QPlainTextEdit(text);
  watchList_->setObjectName(QStringLiteral("watchListField"));
  watchList_->setAccessibleName(QStringLiteral("Watch list"));
  watchList_->setTabChangesFocus(true);
  auto* label = new QLabel(QStringLiteral("&Watch list:"));
  label->setBuddy(watchList_);
  v->addWidget(label);
  v->addWidget(watchList_, 1);
  addPage(page, QStringLiteral("Watch list"));
}

ShareConfig PreferencesDialog::shareConfig() const {
  ShareConfig c;
  c.rigctldOn = rigctldOn_->isChecked();
  c.rigctldPort = rigctldPort_->value();
  c.flrigOn = flrigOn_->isChecked();
  c.flrigPort = flrigPort_->value();
  c.address = address_->text().trimmed();
  c.transceiver = transceiver_->text().trimmed();
  c.allowedClients = allowedClients_->text().trimmed();
  return c;
}

QString PreferencesDialog::problem() const {
  const ShareConfig c = shareConfig();
  if (!isHostAddress(c.address))
    return QStringLiteral("Rig sharing: \"%1\" is not an IP address, such as 127.0.0.1.").arg(c.address);
  if (c.rigctldOn && c.flrigOn && c.rigctldPort == c.flrigPort)
    return QStringLiteral("Rig sharing: the two servers cannot share port %1.").arg(c.rigctldPort);
  if (c.transceiver.isEmpty()) return QStringLiteral("Rig sharing: the transceiver name is empty.");
  bool allowedOk = true;
  c.allowedAddresses(&allowedOk);
  if (!allowedOk) return QStringLiteral("Rig sharing: the allowed clients must be IP addresses, such as 192.168.1.20.");
  for (const ServiceField& f : services_) {
    const std::string why = spots::serviceAddressProblem(f.edit->text().trimmed().toStdString());
    if (!why.empty()) {
      const spots::Service* s = spots::findService(f.name);
      return QStringLiteral("%1: %2").arg(QString::fromUtf8(s ? s->title : f.name.c_str()),
                                          QString::fromStdString(why));
    }
  }
  return QString();
}

void PreferencesDialog::check() {
  const ShareConfig c = shareConfig();
  addressWarning_->setVisible(isHostAddress(c.address) && !c.loopbackOnly());
  const QString why = problem();
  problemLabel_->setText(why);
  problemLabel_->setVisible(!why.isEmpty());
  buttons_->button(QDialogButtonBox::Ok)->setEnabled(why.isEmpty());
}

void PreferencesDialog::accept() {
  if (!problem().isEmpty()) return;
  const ShareConfig c = shareConfig();
  c.save(settings_);
  for (const ServiceField& f : services_) {
    const spots::Service* s = spots::findService(f.name);
    const QString text = f.edit->text().trimmed();
    // Only a changed address is written, so a default stays a default.
    if (s && text != savedAddress(settings_, *s))
      settings_.setValue(spots::serviceSettingsKey(f.name), text.toStdString());
  }
  if (netsKeyEdit_->text() != netsKey_.key()) netsKey_.store(netsKeyEdit_->text());
  emit shareChanged(c);
  if (watchList_) emit watchListChanged(watchList_->toPlainText());
  QDialog::accept();
}

}  // namespace tolvane::desktop
