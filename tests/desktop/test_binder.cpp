// The binder both ways: program changes repaint widgets and never fire an
// action; the operator's gestures on the widgets fire exactly one action.
#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSlider>
#include <QTabBar>
#include <QTabWidget>
#include <QTest>
#include <cmath>
#include <map>
#include <set>

#include "desktop/window/Binder.h"

namespace tolvane::desktop {
namespace {

using ui::Kind;

struct BinderTest : ::testing::Test {
  BinderTest() {
    tabs = &model.add("mainTab", Kind::TabView);
    tabs->setEntries({{"One", 0, "", false}, {"Two", 0, "", false}});
    vfo = &model.addOn(*tabs, 0, "tlFreqAButton", Kind::Button, 500);
    vfo->setTitle("VFO A");
    mode = &model.addOn(*tabs, 0, "modesPopUpButton", Kind::PopUp);
    mode->setEntries({{"LSB", 0, "", false}, {"USB", 0, "", false}, {"CW-U", 0, "", false}});
    af = &model.addOn(*tabs, 0, "afGainSlider", Kind::Slider);
    af->setRange(0, 255);
    freq = &model.addOn(*tabs, 0, "freqTextField", Kind::TextField);
    meter = &model.addOn(*tabs, 1, "sMeter", Kind::LevelIndicator);
    meter->setRange(0, 25);
    check = &model.addOn(*tabs, 0, "lineEndingCheckBox", Kind::Button);
    voice = &model.add("menuItemPreferencesVoice", Kind::MenuItem, 1900);
    voice->setTitle("Voice guide");
    for (ui::Control* c : {tabs, vfo, mode, af, freq, meter, voice})
      c->setAction([this](ui::Control& s) { ++fired[s.outlet()]; });
    check->setAction([this](ui::Control& s) {
      ++fired[s.outlet()];
      s.setState(s.state() ? 0 : 1);
    });
    binder = std::make_unique<Binder>(model);
  }

  int total() const {
    int n = 0;
    for (const auto& [k, v] : fired) n += v;
    return n;
  }

  ui::Window model;
  ui::Control *tabs, *vfo, *mode, *af, *freq, *meter, *check, *voice;
  std::map<std::string, int> fired;
  std::unique_ptr<Binder> binder;
};

TEST_F(BinderTest, ProgramChangesRepaintWidgetsWithoutFiringActions) {
  vfo->setTitle("14.074.000");
  vfo->setBezel(ui::Bezel::Blue);
  mode->selectIndex(2);
  af->setValue(128);
  freq->setText("14.074");
  meter->setValue(17);
  tabs->selectIndex(1);
  voice->setState(1);
  vfo->setEnabled(false);

  auto* button = binder->widgetAs<QPushButton>("tlFreqAButton");
  EXPECT_EQ(button->text(), "14.074.000");
  EXPECT_FALSE(button->isEnabled());
  EXPECT_TRUE(button->styleSheet().contains(Binder::bezelColour(ui::Bezel::Blue)));
  EXPECT_EQ(binder->widgetAs<QComboBox>("modesPopUpButton")->currentText(), "CW-U");
  EXPECT_EQ(binder->widgetAs<QSlider>("afGainSlider")->value(), 128);
  EXPECT_EQ(binder->widgetAs<QLineEdit>("freqTextField")->text(), "14.074");
  EXPECT_EQ(binder->widgetAs<QProgressBar>("sMeter")->value(), 17);
  EXPECT_EQ(binder->widgetAs<QTabWidget>("mainTab")->currentIndex(), 1);
  EXPECT_TRUE(binder->action("menuItemPreferencesVoice")->isChecked());
  EXPECT_EQ(total(), 0);

  // A bezel removed by the program takes the colour away again.
  vfo->setBezel(ui::Bezel::None);
  EXPECT_TRUE(button->styleSheet().isEmpty());
}

TEST_F(BinderTest, NewEntriesReplaceThePopUpAndKeepTheModelsSelection) {
  std::vector<ui::Entry> many;
  for (int i = 0; i < 5000; ++i) many.push_back({std::to_string(i), 0, i == 7 ? ui::kStatusAvailable : "", i == 9});
  mode->setEntries(many);
  mode->selectIndex(4321);
  auto* box = binder->widgetAs<QComboBox>("modesPopUpButton");
  EXPECT_EQ(box->count(), 5000);
  EXPECT_EQ(box->currentText(), "4321");
  EXPECT_FALSE(box->itemIcon(7).isNull());
  EXPECT_TRUE(box->itemIcon(8).isNull());
  // A heading can be seen but not chosen.
  EXPECT_FALSE(box->model()->flags(box->model()->index(9, 0)) & Qt::ItemIsEnabled);
  EXPECT_TRUE(box->model()->flags(box->model()->index(8, 0)) & Qt::ItemIsEnabled);
  mode->removeAllEntries();
  EXPECT_EQ(box->count(), 0);

  // A list made by a rule is shown entry by entry.
  mode->setEntries(10000, [](std::size_t i) {
    return ui::Entry{std::to_string(i * 10), 0, i == 15 ? ui::kStatusPartiallyAvailable : "", false};
  });
  mode->selectIndex(15);
  EXPECT_EQ(box->count(), 10000);
  EXPECT_EQ(box->currentText(), "150");
  EXPECT_EQ(box->itemText(9999), "99990");
  EXPECT_EQ(box->itemData(15, Qt::ToolTipRole).toString(), "The radio's factory value");
  mode->addEntry({"12345", 0, ui::kStatusReported, false});
  EXPECT_EQ(box->count(), 10001);
  EXPECT_EQ(box->itemText(10000), "12345");
  EXPECT_EQ(box->currentText(), "150");
  EXPECT_EQ(total(), 0);
}

// A pop-up takes the toolkit's size for eight characters and a status image,
// however long its entries, and makes its list only when it first opens.
TEST_F(BinderTest, APopUpIsSizedByItsMinimumLengthAndMakesItsListWhenOpened) {
  mode->setEntries({{"A value far longer than eight characters", 0, "", false}, {"CW", 0, "", false}});
  auto* box = binder->widgetAs<QComboBox>("modesPopUpButton");
  EXPECT_EQ(box->findChild<QAbstractItemView*>(), nullptr);
  QComboBox sized;
  sized.setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  sized.setMinimumContentsLength(8);
  sized.addItems({"A value far longer than eight characters", "CW"});
  EXPECT_EQ(box->sizeHint(), sized.sizeHint());
  EXPECT_EQ(box->minimumSizeHint(), sized.minimumSizeHint());
  EXPECT_LT(box->sizeHint().width(), box->fontMetrics().horizontalAdvance("A value far longer than eight characters"));
  box->setMinimumContentsLength(24);
  box->setPlaceholderText("Choose a port");
  sized.setMinimumContentsLength(24);
  sized.setPlaceholderText("Choose a port");
  EXPECT_EQ(box->sizeHint(), sized.sizeHint());

  box->show();
  box->showPopup();
  auto* list = box->findChild<QAbstractItemView*>();
  ASSERT_NE(list, nullptr);
  EXPECT_EQ(list->model()->rowCount(), 2);
  box->hidePopup();
  EXPECT_EQ(total(), 0);
}

TEST_F(BinderTest, GesturesFireTheActionOnce) {
  binder->widgetAs<QPushButton>("tlFreqAButton")->click();
  EXPECT_EQ(fired["tlFreqAButton"], 1);

  auto* box = binder->widgetAs<QComboBox>("modesPopUpButton");
  QTest::keyClick(box, Qt::Key_Down);
  EXPECT_EQ(fired["modesPopUpButton"], 1);
  EXPECT_EQ(mode->selectedIndex(), 1);

  auto* slider = binder->widgetAs<QSlider>("afGainSlider");
  QTest::keyClick(slider, Qt::Key_Right);
  EXPECT_EQ(fired["afGainSlider"], 1);
  EXPECT_EQ(af->value(), 1);
  QTest::keyClick(slider, Qt::Key_PageUp);
  EXPECT_EQ(fired["afGainSlider"], 2);
  EXPECT_EQ(af->value(), 1 + slider->pageStep());

  auto* edit = binder->widgetAs<QLineEdit>("freqTextField");
  QTest::keyClicks(edit, "7.1");
  EXPECT_EQ(freq->text(), "7.1");
  EXPECT_EQ(fired["freqTextField"], 0);  // typing edits, Return acts
  QTest::keyClick(edit, Qt::Key_Return);
  EXPECT_EQ(fired["freqTextField"], 1);

  binder->action("menuItemPreferencesVoice")->trigger();
  EXPECT_EQ(fired["menuItemPreferencesVoice"], 1);

  auto* tabWidget = binder->widgetAs<QTabWidget>("mainTab");
  tabWidget->show();
  QTest::mouseClick(tabWidget->tabBar(), Qt::LeftButton, {}, tabWidget->tabBar()->tabRect(1).center());
  EXPECT_EQ(fired["mainTab"], 1);
  EXPECT_EQ(tabs->selectedIndex(), 1);
  EXPECT_EQ(total(), 7);
}

TEST_F(BinderTest, AnActionThatChangesItsOwnControlIsNotFiredAgain) {
  // The program answers a gesture by moving the same pop-up elsewhere, as an
  // answer from the radio would: the repaint must not come back as a gesture.
  mode->setAction([this](ui::Control& s) {
    ++fired[s.outlet()];
    s.selectIndex(0);
  });
  auto* box = binder->widgetAs<QComboBox>("modesPopUpButton");
  QTest::keyClick(box, Qt::Key_Down);
  EXPECT_EQ(fired["modesPopUpButton"], 1);
  EXPECT_EQ(box->currentIndex(), 0);

  // A check box shows the state the action set, not its own toggle.
  auto* box2 = binder->widgetAs<QCheckBox>("lineEndingCheckBox");
  box2->click();
  EXPECT_TRUE(box2->isChecked());
  check->setAction([](ui::Control&) {});  // an action that refuses the change
  box2->click();
  EXPECT_TRUE(box2->isChecked());
}

TEST_F(BinderTest, DisabledControlsIgnoreGestures) {
  mode->setEnabled(false);
  auto* box = binder->widgetAs<QComboBox>("modesPopUpButton");
  EXPECT_FALSE(box->isEnabled());
  QTest::keyClick(box, Qt::Key_Down);
  EXPECT_EQ(fired["modesPopUpButton"], 0);
  EXPECT_EQ(mode->selectedIndex(), 0);
}

TEST_F(BinderTest, AccessibleNamesSayWhatTheControlIsAndDescriptionsWhatItShows) {
  auto* button = binder->widgetAs<QPushButton>("tlFreqAButton");
  vfo->setTitle("14.074.000");
  EXPECT_EQ(button->accessibleName(), "VFO A");
  EXPECT_EQ(button->accessibleDescription(), "14.074.000");
  EXPECT_EQ(binder->widget("modesPopUpButton")->accessibleName(), "Mode");
  EXPECT_EQ(binder->widget("afGainSlider")->accessibleName(), "AF gain");
  meter->setValue(9);
  EXPECT_EQ(binder->widget("sMeter")->accessibleDescription(), "9");

  ui::Control band("m20Button", Kind::Button, 20);
  band.setTitle("20");
  EXPECT_EQ(accessibleNameFor(band), "Band 20 m");
  ui::Control menu("menu2010408PopUp", Kind::PopUp, 2010408);
  EXPECT_EQ(accessibleNameFor(menu), "Menu 01-04-08");
  ui::Control unnamed("scopeWidthPopUpButton", Kind::PopUp, 0);
  EXPECT_EQ(accessibleNameFor(unnamed), "Scope width");
}

TEST(BinderBezels, EveryColourIsDistinctAndDarkEnoughForWhiteText) {
  std::set<QString> seen;
  for (ui::Bezel b : {ui::Bezel::Blue, ui::Bezel::Green, ui::Bezel::Orange, ui::Bezel::Red, ui::Bezel::Purple,
                      ui::Bezel::Pink, ui::Bezel::Brown}) {
    const QColor c(Binder::bezelColour(b));
    ASSERT_TRUE(c.isValid());
    EXPECT_TRUE(seen.insert(c.name()).second);
    // Relative luminance low enough for a 4.5:1 contrast with white text.
    auto lin = [](double v) { return v <= 0.03928 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4); };
    const double l = 0.2126 * lin(c.redF()) + 0.7152 * lin(c.greenF()) + 0.0722 * lin(c.blueF());
    EXPECT_GE(1.05 / (l + 0.05), 4.5) << c.name().toStdString();
  }
  EXPECT_TRUE(Binder::bezelColour(ui::Bezel::None).isEmpty());
}

}  // namespace
}  // namespace tolvane::desktop
