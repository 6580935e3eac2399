// Tolvane's desktop program: builds the platform services, the controls model,
// the controller, the window and its binder, then runs the event loop.
#include <QApplication>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTimer>
#include <QUrl>
#include <chrono>
#include <cstdio>
#include <memory>
#include <string_view>
#include <utility>

#include "app/SerialPortDemoController.h"
#include "app/WindowLayout.h"
#include "desktop/CommandLine.h"
#include "desktop/TraceDriver.h"
#include "desktop/servers/ShareServers.h"
#include "desktop/services/MediaLoader.h"
#include "desktop/services/NetsKey.h"
#include "desktop/services/QtSerial.h"
#include "desktop/services/QtServices.h"
#include "desktop/services/Resources.h"
#include "desktop/window/Binder.h"
#include "desktop/window/FontWarmUp.h"
#include "desktop/window/LogDesk.h"
#include "desktop/window/MainWindow.h"
#include "desktop/window/PreferencesDialog.h"
#include "desktop/window/SharingPanel.h"
#include "share/ControllerRig.h"
#include "spots/WebLists.h"
#include "ui/Table.h"
#ifdef TOLVANE_HAVE_SIM
#include "sim/PortManagerWithSimulator.h"
#endif

using namespace tolvane;

namespace {

std::int64_t monotonicNs() {
  return std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::steady_clock::now().time_since_epoch())
      .count();
}

// With TOLVANE_TRACE set, timing marks go to standard error for the benchmark
// and the end-to-end test: when the window is first on screen, every new
// title of a button, label or box, the row count of every reloaded table, and
// every event-loop stall longer than 20 ms. Standard input then takes the
// tests' gestures (desktop/TraceDriver.h).
bool tracing() { return qEnvironmentVariableIsSet("TOLVANE_TRACE"); }

// A start-up step done, for the benchmark's account of where the time to the
// first frame goes.
void step(const char* name) {
  static const bool on = tracing();
  if (on) std::fprintf(stderr, "trace step %s %lld\n", name, static_cast<long long>(monotonicNs()));
}

void watchStalls(QObject* context) {
  auto* timer = new QTimer(context);
  auto* clock = new QElapsedTimer;
  clock->start();
  timer->setInterval(5);
  timer->setTimerType(Qt::PreciseTimer);
  QObject::connect(timer, &QTimer::timeout, context, [clock] {
    const qint64 gap = clock->restart();
    if (gap > 25)
      std::fprintf(stderr, "trace stall %lld ms at %lld\n", static_cast<long long>(gap - 5),
                   static_cast<long long>(monotonicNs()));
  });
  QObject::connect(context, &QObject::destroyed, [clock] { delete clock; });
  // The loop is watched from its first turn; the work before it is start-up time.
  QTimer::singleShot(0, context, [timer, clock] {
    std::fprintf(stderr, "trace loop %lld\n", static_cast<long long>(monotonicNs()));
    clock->start();
    timer->start();
  });
}

bool headlessRequest(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    const QByteArray a(argv[i]);
    if (a == "--help" || a == "-h" || a == "--help-all" || a == "--version" || a == "-v" || a == "--list-ports")
      return true;
  }
  return false;
}

}  // namespace

int main(int argc, char** argv) {
  step("main");
  // The font list and the port list are read while the application and its
  // window are built; --help, --version and --list-ports need no display and
  // no fonts.
  const bool headless = headlessRequest(argc, argv);
  desktop::FontWarmUp fonts(!headless);
  desktop::QtPortManager::prefetchSystemPorts();
  std::unique_ptr<QCoreApplication> app =
      headless ? std::make_unique<QCoreApplication>(argc, argv) : std::make_unique<QApplication>(argc, argv);
  fonts.applicationMade(!headless);
  QCoreApplication::setOrganizationName(QStringLiteral("Tolvane"));
  QCoreApplication::setApplicationName(QStringLiteral("Tolvane"));
  QCoreApplication::setApplicationVersion(QStringLiteral(TOLVANE_VERSION));
  // Ties the window to its launcher, so the desktop shows the program's name and icon.
  QGuiApplication::setDesktopFileName(QString::fromLatin1(desktop::kApplicationId));
  step("application");
  const desktop::Options options = desktop::parseCommandLine(QCoreApplication::arguments());

  QObject root;
  desktop::QtScheduler scheduler(&root);
  desktop::QtPortManager systemPorts;
  if (options.port.startsWith('/')) systemPorts.addExtraPort(options.port);
#ifdef TOLVANE_HAVE_SIM
  sim::PortManagerWithSimulator ports(systemPorts, scheduler);
#else
  platform::PortManager& ports = systemPorts;
#endif

  step("ports");
  if (options.listPorts) {
    for (const auto& p : ports.availablePorts()) std::printf("%s\n", p->description().c_str());
    return 0;
  }

  desktop::QtSettingsStore settings;
  desktop::StdoutLog log;
  // Sounds and the voice guide come from their own module, loaded when wanted.
  desktop::MediaLoader media(desktop::mediaModulePath(), desktop::soundsDirectory(), log);
  desktop::QtNotifications notifications;
  desktop::QtHttpClient http;
  desktop::QtBrowser browser;
  desktop::QtAlerts alerts;
  desktop::QtFiles files;
  platform::Services services{ports, scheduler, settings, media, media, notifications, http, browser, alerts, log};
  step("services");

  // Rig sharing: both servers start with the program, on the preferences'
  // address and ports unless the command line says otherwise for this run.
  desktop::ShareConfig shareConfig = desktop::ShareConfig::load(settings);
  if (options.rigctldPort >= 0) {
    shareConfig.rigctldOn = options.rigctldPort > 0;
    if (options.rigctldPort > 0) shareConfig.rigctldPort = options.rigctldPort;
  }
  if (options.flrigPort >= 0) {
    shareConfig.flrigOn = options.flrigPort > 0;
    if (options.flrigPort > 0) shareConfig.flrigPort = options.flrigPort;
  }
  if (!options.shareAddress.isEmpty()) shareConfig.address = options.shareAddress;

  ui::Window model;
  buildWindow(model);
  SerialPortDemoController controller(services, model);
  step("controller");
  controller.setFiles(&files);
  // The set-up routine works on the controls model, so it runs while the font
  // list is still being read; the widgets are made from the model after it.
  // The addresses first: the start-up fetches read them.
  for (const auto& [name, url] : options.services) controller.overrideServiceAddress(name, url);
  // TLS is loaded on a worker thread when a list is fetched over https.
  bool tlsWanted = false;
  for (const spots::Service& s : spots::kServices) {
    // The park and map pages open in the browser; only the lists are fetched.
    if (const std::string_view name = s.name; name == "pota-web" || name == "map") continue;
    tlsWanted = tlsWanted || controller.serviceAddress(s.name).starts_with("https:");
  }
  if (tlsWanted) http.loadTlsInBackground();
  // Web answers are handled from the first frame on (released below).
  http.holdAnswers();
  controller.awakeFromNib();
  if (!options.port.isEmpty()) {
    bool found = false;
    for (const auto& p : ports.availablePorts()) {
      const QString title = QString::fromStdString(p->description());
      if (desktop::portMatches(options.port, title, QString::fromStdString(p->name()))) {
        found = controller.choosePort(p->description());
        break;
      }
    }
    if (!found) std::fprintf(stderr, "tolvane: no port named %s\n", qPrintable(options.port));
  }
  bool connectNow = options.connect;
#ifdef TOLVANE_HAVE_SIM
  // The run command's first look at the program: a working radio at once.
  if (options.trySimulator && options.port.isEmpty())
    connectNow = controller.chooseSimulatorUnlessRadioRemembered(ports.simulator()->description()) || connectNow;
#endif
  step("set-up");
  fonts.wait();
  step("fonts");
  desktop::Binder binder(model);
  step("widgets");
  desktop::MainWindow window(binder);
  step("pages");
  alerts.setParent(&window);
  files.setParent(&window);
  // The manual installed with the program; Help > Manual and the manual button open it.
  if (const QString manual = desktop::manualPath(); !manual.isEmpty()) {
    const std::string address = QUrl::fromLocalFile(manual).toString().toStdString();
    controller.setManualAddress(address);
    QObject::connect(&window, &desktop::MainWindow::manualRequested, [&browser, address] { browser.openUrl(address); });
  }

  if (tracing()) {
    binder.setRepaintHook([](const ui::Control& c) {
      const ui::Kind k = c.kind();
      if (k == ui::Kind::Button || k == ui::Kind::Label || k == ui::Kind::Box)
        std::fprintf(stderr, "trace title %s %s %lld\n", c.outlet().c_str(), c.title().c_str(),
                     static_cast<long long>(monotonicNs()));
      else if (k == ui::Kind::Table && c.dataSource()) {
        const int rows = c.dataSource()->numberOfRows(c);
        std::fprintf(stderr, "trace rows %s %d %lld\n", c.outlet().c_str(), rows,
                     static_cast<long long>(monotonicNs()));
        // Marked rows ("watched") one line each.
        for (int r = 0; r < rows; ++r)
          if (const std::string marks = ui::rowMarks(c, r); !marks.empty())
            std::fprintf(stderr, "trace marks %s %d %s\n", c.outlet().c_str(), r, marks.c_str());
      }
    });
    QObject::connect(&window, &desktop::MainWindow::firstPainted,
                     [] { std::fprintf(stderr, "trace shown %lld\n", static_cast<long long>(monotonicNs())); });
    watchStalls(&root);
    desktop::readGesturesFromStandardInput(model, &root);
  }

  controller.applicationDidFinishLaunching();

  share::ControllerRig sharedRig(controller);
  desktop::RigctlServer rigctld(sharedRig, share::RigctlOptions{"Tolvane " TOLVANE_VERSION}, log);
  desktop::FlrigServer flrig(sharedRig, share::FlrigOptions{}, log);
  // Reads that wait for the radio (meters on demand) finish when it answers.
  sharedRig.changed = [&rigctld, &flrig] {
    rigctld.radioAnswered();
    flrig.radioAnswered();
  };
  window.addConnectionSection(new desktop::SharingPanel({&rigctld, &flrig}));
  // The hunter's log: its file and page are opened when first needed.
  desktop::LogDesk logDesk(window, binder, controller, files, alerts);

  // The nets user key comes from the keyring; the controller holds it for
  // the confirmations and never writes it anywhere.
  desktop::NetsKey netsKey;
  QObject::connect(&netsKey, &desktop::NetsKey::stateChanged,
                   [&controller, &netsKey] { controller.setNetsUserKey(netsKey.key().toStdString()); });
  netsKey.load();
  QObject::connect(&window, &desktop::MainWindow::preferencesRequested, [&] {
    auto* dialog = new desktop::PreferencesDialog(settings, netsKey, &window);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->addWatchListPage(controller.watchList());
    QObject::connect(dialog, &desktop::PreferencesDialog::watchListChanged, [&controller](const QString& text) {
      controller.setWatchList(tolvane::log::WatchList::parse(text.toStdString()));
    });
    QObject::connect(
        dialog, &desktop::PreferencesDialog::shareChanged,
        [&rigctld, &flrig](const desktop::ShareConfig& c) { desktop::applyShareConfig(c, rigctld, flrig); });
    dialog->open();
  });

  step("sharing");
  window.show();
  step("show");
  // Connecting for the operator, once the window is on screen (opening the
  // port takes tens of milliseconds the first frame should not wait for):
  // asked by --connect or by the "Connect at start" preference. A window that
  // is not painted (started minimised) connects after a second all the same.
  auto connectOnce = [&controller, connectNow, done = std::make_shared<bool>(false)] {
    if (std::exchange(*done, true)) return;
    controller.startConnection(connectNow);
  };
  QObject::connect(&window, &desktop::MainWindow::firstPainted, &window, connectOnce, Qt::QueuedConnection);
  // With sounds or the voice guide on, their module is loaded as soon as the
  // window is on screen, so the port's opening sound finds it ready; with
  // both off, the first sound asked for loads it.
  QObject::connect(&media, &desktop::MediaLoader::loaded, [] { step("media"); });
  if (controller.tlSounds == "1" || controller.tlVoiceGuide == "1")
    QObject::connect(&window, &desktop::MainWindow::firstPainted, &media, &desktop::MediaLoader::load);
  QTimer::singleShot(1000, &window, connectOnce);
  // The sharing servers listen from the turn after that: their clients'
  // first requests need no frame.
  auto shareOnce = [&shareConfig, &rigctld, &flrig, done = std::make_shared<bool>(false)] {
    if (!std::exchange(*done, true)) desktop::applyShareConfig(shareConfig, rigctld, flrig);
  };
  QObject::connect(&window, &desktop::MainWindow::firstPainted, &window, shareOnce, Qt::QueuedConnection);
  QTimer::singleShot(1000, &window, shareOnce);
  auto answersOnce = [&http, done = std::make_shared<bool>(false)] {
    if (!std::exchange(*done, true)) http.release();
  };
  QObject::connect(&window, &desktop::MainWindow::firstPainted, &window, answersOnce, Qt::QueuedConnection);
  QTimer::singleShot(1000, &window, answersOnce);
  return app->exec();
}
