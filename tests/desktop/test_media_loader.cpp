// Sounds and speech from their module: what is asked before it is loaded
// waits, in order, and nothing is lost; a missing module means silence.
#include <gtest/gtest.h>

#include <QTest>
#include <future>
#include <string>
#include <vector>

#include "desktop/services/MediaLoader.h"
#include "support/Fakes.h"

using namespace tolvane;
using desktop::MediaLoader;
using test::FakeLog;

namespace {

std::vector<std::string> heard;
QString openedWith;

class RecordingMedia : public desktop::MediaModule, platform::Sounds, platform::Speech {
 public:
  platform::Sounds& sounds() override { return *this; }
  platform::Speech& speech() override { return *this; }
  void playResource(const std::string& name) override { heard.push_back("resource " + name); }
  void playSystem(const std::string& name) override { heard.push_back("system " + name); }
  void speak(const std::string& text) override { heard.push_back("speak " + text); }
};

desktop::MediaModule* openRecording(const QString& soundsDirectory) {
  openedWith = soundsDirectory;
  return new RecordingMedia;
}

}  // namespace

TEST(MediaLoader, WhatIsAskedBeforeTheModuleIsReadyGoesOutInOrderThenStraightThrough) {
  heard.clear();
  FakeLog log;
  std::promise<void> release;
  std::shared_future<void> released = release.get_future().share();
  int finds = 0;
  MediaLoader media(
      [released, &finds] {
        ++finds;
        released.wait();  // the module's libraries are still loading
        return MediaLoader::Found{reinterpret_cast<void*>(&openRecording), {}};
      },
      QStringLiteral("/opt/sounds"), log);
  bool loaded = false;
  QObject::connect(&media, &MediaLoader::loaded, [&] { loaded = true; });

  // Nothing is loaded until something is asked for.
  QTest::qWait(20);
  EXPECT_EQ(finds, 0);

  media.playSystem("Bottle");
  media.speak("14.074 megahertz");
  media.playResource("Seatbelts");
  media.load();  // a second start while loading starts nothing new
  QTest::qWait(20);
  EXPECT_TRUE(heard.empty());
  EXPECT_FALSE(media.ready());

  release.set_value();
  ASSERT_TRUE(QTest::qWaitFor([&] { return loaded; }, 5000));
  EXPECT_EQ(finds, 1);
  EXPECT_EQ(openedWith, QStringLiteral("/opt/sounds"));
  EXPECT_EQ(heard, (std::vector<std::string>{"system Bottle", "speak 14.074 megahertz", "resource Seatbelts"}));

  // Once loaded, a call reaches the module before it returns.
  media.playSystem("Frog");
  EXPECT_EQ(heard.back(), "system Frog");
  EXPECT_TRUE(log.lines.empty());
}

TEST(MediaLoader, AModuleThatCannotBeLoadedIsSilenceAndOneLine) {
  heard.clear();
  FakeLog log;
  MediaLoader media(QStringLiteral("/nonexistent/libtolvane-media.so"), QStringLiteral("/opt/sounds"), log);
  media.playSystem("Basso");
  ASSERT_TRUE(QTest::qWaitFor([&] { return !log.lines.empty(); }, 5000));
  ASSERT_EQ(log.lines.size(), 1u);
  EXPECT_EQ(log.lines[0], "Sounds and the voice guide are off: there is no /nonexistent/libtolvane-media.so");
  // Later calls neither queue nor try again.
  media.speak("USB");
  media.load();
  QTest::qWait(20);
  EXPECT_EQ(log.lines.size(), 1u);
  EXPECT_FALSE(media.ready());
}

TEST(MediaLoader, TheBuiltModuleLoadsAndTakesSoundsAndSpeech) {
  FakeLog log;
  MediaLoader media(QStringLiteral(TOLVANE_MEDIA_MODULE), QStringLiteral(TOLVANE_SOUNDS_DIR), log);
  bool loaded = false;
  QObject::connect(&media, &MediaLoader::loaded, [&] { loaded = true; });
  media.load();
  ASSERT_TRUE(QTest::qWaitFor([&] { return loaded; }, 10000)) << (log.lines.empty() ? "" : log.lines[0]);
  EXPECT_TRUE(media.ready());
  // With or without an audio device here, playing never fails.
  media.playSystem("Glass");
  media.playResource("NoSuchSound");
  EXPECT_TRUE(log.lines.empty());
}
