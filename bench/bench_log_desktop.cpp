// The hunter's log at 100 000 contacts. Opening the Log page: the database
// file read whole, the view sorted newest first, the page made, shown and
// painted (meant to stay under 100 ms). The worked-today lookup of a 500-spot
// list against the log (under 5 ms), and the index of today's contacts it
// needs, built from the whole log. The ADIF export of the whole log to a
// file (under 1 s).
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QTemporaryDir>
#include <cstdio>
#include <fstream>
#include <string>

#include "desktop/services/SqliteLogStore.h"
#include "desktop/window/LogPage.h"
#include "log/Adif.h"
#include "log/LogBook.h"
#include "log/WorkedToday.h"
#include "support/Fakes.h"

using namespace tolvane;

namespace {

constexpr std::int64_t kNow = 1795576500;  // 2026-11-25 03:15:00 UTC
constexpr int kContacts = 100000;

const char* const kModes[] = {"SSB", "CW", "FT8", "FT4"};
const std::int64_t kHertz[] = {3560000, 7185000, 10106000, 14285000, 18110000, 21300000, 24930000, 28400000};

// Two years of hunting, one contact every ten minutes or so; the last 300 are today's.
std::vector<log::Contact> manyContacts() {
  std::vector<log::Contact> out;
  out.reserve(kContacts);
  for (int i = 0; i < kContacts; ++i) {
    log::Contact c;
    c.call = "K" + std::to_string(i % 10) + "A" + std::string(1, static_cast<char>('A' + i % 26)) + "C";
    c.sig = i % 3 ? "POTA" : "SOTA";
    c.reference = i % 3 ? "US-" + std::to_string(1000 + i % 5000) : "W7W/KG-" + std::to_string(100 + i % 800);
    c.frequencyHz = kHertz[i % 8];
    c.band = log::adifBand(c.frequencyHz);
    const log::LogMode mode = log::logModeFor(kModes[i % 4], c.frequencyHz);
    c.mode = mode.mode;
    c.submode = mode.submode;
    c.utc = kNow - static_cast<std::int64_t>(kContacts - i) * (i >= kContacts - 300 ? 30 : 631);
    c.rstSent = "59";
    c.rstReceived = "57";
    c.ownCall = "N0CALL";
    c.comment = i % 5 ? "" : "Grüße vom Gipfel, 73";
    out.push_back(std::move(c));
  }
  return out;
}

struct Fixture {
  QTemporaryDir dir;
  QString path = dir.filePath(QStringLiteral("log.sqlite"));
  std::vector<log::Contact> contacts = manyContacts();
  Fixture() {
    desktop::SqliteLogStore store(path);
    std::vector<log::Contact> copy = contacts;
    std::string error;
    if (!store.insert(copy, error)) std::fprintf(stderr, "cannot fill the log: %s\n", error.c_str());
    contacts = copy;
  }
};

Fixture& fixture() {
  static Fixture f;
  return f;
}

void BM_OpenLogPage(benchmark::State& state) {
  Fixture& f = fixture();
  test::FakeFiles files;
  test::FakeAlerts alerts;
  for (auto _ : state) {
    desktop::SqliteLogStore store(f.path);
    log::LogBook book(store);
    std::string error;
    if (!book.open(error)) state.SkipWithError(error.c_str());
    desktop::LogPage page(book, files, alerts);
    page.resize(1200, 700);
    page.show();
    QCoreApplication::processEvents();
    benchmark::DoNotOptimize(page.statusText());
    state.PauseTiming();
    page.hide();
    state.ResumeTiming();
  }
  state.counters["contacts"] = static_cast<double>(f.contacts.size());
}
BENCHMARK(BM_OpenLogPage)->Unit(benchmark::kMillisecond)->Iterations(10);

// The parts of opening the page: the database read, and the view over contacts in memory.
void BM_ReadLogFile(benchmark::State& state) {
  Fixture& f = fixture();
  for (auto _ : state) {
    desktop::SqliteLogStore store(f.path);
    std::vector<log::Contact> contacts;
    std::string error;
    store.load(contacts, error);
    benchmark::DoNotOptimize(contacts.size());
  }
}
BENCHMARK(BM_ReadLogFile)->Unit(benchmark::kMillisecond)->Iterations(10);

void BM_ViewNewestFirst(benchmark::State& state) {
  Fixture& f = fixture();
  struct Memory : platform::LogStore {
    const std::vector<log::Contact>& all;
    explicit Memory(const std::vector<log::Contact>& c) : all(c) {}
    bool load(std::vector<log::Contact>& out, std::string&) override {
      out = all;
      return true;
    }
    bool insert(std::vector<log::Contact>&, std::string&) override { return true; }
    bool update(const log::Contact&, std::string&) override { return true; }
    bool remove(const std::vector<std::int64_t>&, std::string&) override { return true; }
  } memory(f.contacts);
  for (auto _ : state) {
    log::LogBook book(memory);
    std::string error;
    book.open(error);
    benchmark::DoNotOptimize(book.rows().size());
  }
}
BENCHMARK(BM_ViewNewestFirst)->Unit(benchmark::kMillisecond)->Iterations(10);

// 500 spots of today's bands and modes, a tenth of them worked.
void BM_WorkedTodayLookup500(benchmark::State& state) {
  Fixture& f = fixture();
  const log::WorkedToday worked(f.contacts, kNow);
  int hits = 0;
  for (auto _ : state) {
    hits = 0;
    for (int i = 0; i < 500; ++i) {
      const int j = kContacts - 1 - (i % 10 == 0 ? i % 300 : 5000 + i);
      const log::Contact& c = f.contacts[static_cast<std::size_t>(j)];
      hits += worked.worked(c.call, c.reference, c.frequencyHz, kModes[j % 4]) ? 1 : 0;
    }
    benchmark::DoNotOptimize(hits);
  }
  state.counters["worked"] = hits;
}
BENCHMARK(BM_WorkedTodayLookup500)->Unit(benchmark::kMillisecond);

void BM_WorkedTodayIndexFromWholeLog(benchmark::State& state) {
  Fixture& f = fixture();
  for (auto _ : state) {
    const log::WorkedToday worked(f.contacts, kNow);
    benchmark::DoNotOptimize(worked.day());
  }
}
BENCHMARK(BM_WorkedTodayIndexFromWholeLog)->Unit(benchmark::kMillisecond);

void BM_ExportAdif(benchmark::State& state) {
  Fixture& f = fixture();
  const std::string out = f.dir.filePath(QStringLiteral("export.adi")).toStdString();
  std::size_t bytes = 0;
  for (auto _ : state) {
    const std::string text = log::writeAdif(f.contacts, kNow, "bench");
    std::ofstream file(out, std::ios::binary | std::ios::trunc);
    file << text;
    file.close();
    bytes = text.size();
  }
  state.counters["bytes"] = static_cast<double>(bytes);
}
BENCHMARK(BM_ExportAdif)->Unit(benchmark::kMillisecond);

void BM_ReadAdif(benchmark::State& state) {
  Fixture& f = fixture();
  const std::string text = log::writeAdif(f.contacts, kNow, "bench");
  for (auto _ : state) benchmark::DoNotOptimize(log::readAdif(text).contacts.size());
}
BENCHMARK(BM_ReadAdif)->Unit(benchmark::kMillisecond);

}  // namespace
