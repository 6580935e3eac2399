// Tolvane's desktop program: builds the platform services, the controls model,
// the controller, the window and its binder, then runs the event loop.
#include <malloc.h>

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
#include "desktop/servers/Sharing.h"
#include "desktop/services/MediaLoader.h"
#include "desktop/services/ModuleLoader.h"
#include "desktop/services/NetsKey.h"
#include "desktop/services/NetworkServices.h"
#include "desktop/services/QtServices.h"
#include "desktop/services/Resources.h"
#include "desktop/services/StoreServices.h"
#include "desktop/services/SystemPorts.h"
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

// Whether the start chooses a system port: one named by --port, or a
// remembered one other than the simulated transceiver.
bool systemPortWanted(int argc, char** argv, const platform::SettingsStore& settings) {
  for (int i = 1; i < argc; ++i) {
    const QByteArray a(argv[i]);
    if (a == "--port" || a.startsWith("--port=")) return true;
  }
  const std::string remembered = settings.value("defaultPort").value_or("");
#ifdef TOLVANE_HAVE_SIM
  if (remembered == sim::SimulatedSerialPort::kDescription) return false;
#endif
  return !remembered.empty();
}

}  // namespace

int main(int argc, char** argv) {
#ifdef __GLIBC__
  // One malloc arena for every thread, set before the first thread starts.
  // The font, port and module threads would each get an arena of their own
  // that stays mapped, half used, for the program's life (0.3 to 0.6 MB at
  // idle); sharing one costs no measurable start-up time, since they
  // allocate little beside the window's thread.
  mallopt(M_ARENA_MAX, 1);
#endif
  step("main");
  // The font list and the port list are read while the application and its
  // window are built; --help, --version and --list-ports need no display and
  // no fonts.
  const bool headless = headlessRequest(argc, argv);
  // Made before the warm-up so that it outlives the warm-up's thread, which
  // uses the application's fonts.
  std::unique_ptr<QCoreApplication> app;
  desktop::FontWarmUp fonts(!headless);
  desktop::StdoutLog log;
  // The serial ports' module is loaded, and the system's port list read, on
  // a worker thread of their own.
  desktop::SystemPorts systemPorts(desktop::modulePath(QStringLiteral("libtolvane-serial.so")), log);
  // A start that is to choose a system port (one named on the command line,
  // or a remembered one other than the simulated transceiver) reads the list
  // from here on, beside the window's making, and the set-up routine waits
  // for it. Any other start reads it after the first frame, so that its
  // thread does not take a core from the window's; the port pop-up fills
  // when it is in. --list-ports loads it when it lists.
  desktop::QtSettingsStore settings;
  if (!headless) {
    if (systemPortWanted(argc, argv, settings))
      systemPorts.prefetch();
    else
      systemPorts.answerBeforeRead();
  }
  app = headless ? std::make_unique<QCoreApplication>(argc, argv) : std::make_unique<QApplication>(argc, argv);
  fonts.applicationMade(!headless);
  QCoreApplication::setOrganizationName(QStringLiteral("Tolvane"));
  QCoreApplication::setApplicationName(QStringLiteral("Tolvane"));
  QCoreApplication::setApplicationVersion(QStringLiteral(TOLVANE_VERSION));
  // Ties the window to its launcher, so the desktop shows the program's name and icon.
  QGuiApplication::setDesktopFileName(QString::fromLatin1(desktop::kApplicationId));
  step("application");
  const desktop::Options options = desktop::parseCommandLine(QCoreApplication::arguments());
  if (options.exitCode) return *options.exitCode;

  QObject root;
  desktop::QtScheduler scheduler(&root);
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

  // Sounds and the voice guide come from their own module, loaded when wanted.
  desktop::MediaLoader media(desktop::modulePath(QStringLiteral("libtolvane-media.so")), desktop::soundsDirectory(),
                             log);
  desktop::QtNotifications notifications;
  // Web requests and rig sharing come from their own module, loaded once the
  // window is on screen; what is asked before waits for it.
  desktop::NetworkServices http(desktop::modulePath(QStringLiteral("libtolvane-network.so")), log);
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
  if (tlsWanted) http.loadTlsInBackground();  // once the module is loaded
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
  http.setSharedRig(&sharedRig, "Tolvane " TOLVANE_VERSION);
  // Reads that wait for the radio (meters on demand) finish when it answers.
  sharedRig.changed = [&http] { http.radioAnswered(); };
  window.addConnectionSection(new desktop::SharingPanel({&http.rigctldState(), &http.flrigState()}));
  // The log's file and the keyring come from their own module, loaded after
  // the first frame, or when the log is first opened if that is sooner.
  desktop::StoreServices store(desktop::modulePath(QStringLiteral("libtolvane-store.so")), log);
  // The hunter's log: its file and page are opened when first needed.
  desktop::LogDesk logDesk(
      window, binder, controller, files, alerts, [&store](const QString& path) { return store.openLog(path); },
      desktop::defaultLogPath());

  // The nets user key comes from the keyring; the controller holds it for
  // the confirmations and never writes it anywhere.
  desktop::NetsKey netsKey(store);
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
    QObject::connect(dialog, &desktop::PreferencesDialog::shareChanged,
                     [&http](const desktop::ShareConfig& c) { http.share(c); });
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
  // The system's port list, when the start did not wait for it.
  QObject::connect(&window, &desktop::MainWindow::firstPainted, &systemPorts, &desktop::SystemPorts::prefetch,
                   Qt::QueuedConnection);
  QTimer::singleShot(1000, &systemPorts, &desktop::SystemPorts::prefetch);
  // Web requests and rig sharing: their module is loaded (on a worker thread)
  // from the turn after the first frame; the requests the set-up routine sent
  // then go out in order, and the sharing servers listen as soon as it is
  // ready: their clients' first requests need no frame.
  http.share(shareConfig);
  QObject::connect(&http, &desktop::NetworkServices::loaded, [] { step("network"); });
  QObject::connect(&window, &desktop::MainWindow::firstPainted, &http, &desktop::NetworkServices::load,
                   Qt::QueuedConnection);
  QTimer::singleShot(1000, &http, &desktop::NetworkServices::load);
  // The log's module follows the network's: the first spot list shown opens
  // the log to mark what was worked today.
  QObject::connect(&store, &desktop::StoreServices::loaded, [] { step("store"); });
  QObject::connect(&http, &desktop::NetworkServices::loaded, &store, &desktop::StoreServices::load);
  QTimer::singleShot(1000, &store, &desktop::StoreServices::load);
  const int code = app->exec();
  // The servers go while the radio they serve is still there.
  http.close();
  return code;
}
