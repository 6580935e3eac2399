// The radio's menu items as the radio defines them: each sub-group in read
// order with its items' kinds and widths, written out here as text. The
// settings pages, their read lists and the simulated transceiver are each
// checked against it, so a changed width or kind fails here even though the
// program and the simulator read one table.
#include <gtest/gtest.h>

#include <set>
#include <sstream>

#include "sim/Transceiver.h"
#include "support/Harness.h"

using namespace tolvane;

namespace {

// Sub-group | items | item number with kind and width (T3: a value of three
// characters shown as its own text; I2: a position written with two digits).
constexpr const char* kItemTable = R"(
EX0101 | 16 | 01 T3, 02 T3, 03 T3, 04 T4, 05 T4, 06 T4, 07 I2, 08 I1, 09 I2, 10 I1, 11 T3, 12 I1, 13 I1, 14 I1, 15 T3, 16 I1
EX0102 | 17 | 01 T3, 02 T3, 03 T3, 04 T4, 05 T4, 06 T4, 07 I2, 08 I1, 09 I2, 10 I1, 11 T3, 12 I1, 13 I1, 14 T4, 15 I1, 16 T3, 17 I1
EX0103 | 21 | 01 T3, 02 T3, 03 T3, 04 T4, 05 T4, 06 T4, 07 I2, 08 I1, 09 I2, 10 I1, 11 T3, 12 I1, 13 T4, 14 I1, 15 T3, 16 I1, 17 T4, 18 T4, 19 I1, 20 I2, 21 I1
EX0104 | 18 | 01 T3, 02 T3, 03 T3, 04 T4, 05 T4, 06 T4, 07 I1, 08 T4, 09 I2, 10 I1, 11 I2, 12 I1, 13 T3, 14 I1, 15 I1, 16 I1, 17 T3, 18 I1
EX0105 | 16 | 01 T3, 02 T3, 03 T3, 04 T4, 05 T4, 06 T4, 07 I1, 08 I1, 09 I2, 10 I1, 11 I2, 12 I1, 13 T3, 14 I1, 15 I1, 16 I1
EX0106 | 5 | 01 I1, 02 I1, 03 I1, 04 I1, 05 T3
EX0107 | 6 | 01 I1, 02 I1, 03 I1, 04 I1, 05 I1, 06 I1
EX0201 | 18 | 01 T3, 02 T3, 03 T3, 04 T4, 05 T4, 06 T4, 07 I2, 08 I1, 09 I2, 10 I1, 11 T3, 12 I1, 13 I1, 14 I1, 15 I1, 16 I1, 17 I1, 18 I1
EX0202 | 11 | 01 I1, 02 I1, 03 T4, 04 I1, 05 T4, 06 I1, 07 I1, 08 I1, 09 I1, 10 I1, 11 T2
EX0203 | 1 | 01 I1
EX0301 | 17 | 01 I1, 02 I1, 03 T3, 04 I1, 05 I1, 06 I1, 07 I1, 11 I1, 12 I1, 13 I1, 14 T3, 15 I1, 16 I2, 17 I1, 18 I1, 19 T3, 20 I2
EX0302 | 4 | 01 I1, 02 T3, 03 T2, 04 I1
EX0303 | 19 | 01 I1, 02 I2, 03 T3, 04 T2, 05 I2, 06 T3, 07 T2, 08 I2, 09 T3, 10 T2, 11 I2, 12 T3, 13 T2, 14 I2, 15 T3, 16 T2, 17 I2, 18 T3, 19 T2
EX0304 | 7 | 01 T3, 02 T3, 03 T3, 04 T3, 05 I1, 06 T3, 07 I1
EX0305 | 7 | 01 I1, 02 I1, 03 I1, 04 I1, 05 I1, 06 I1, 07 I1
EX0401 | 5 | 01 call sign, 02 I1, 03 I1, 04 I2, 05 I2
EX0402 | 4 | 01 I1, 02 I1, 03 I1, 04 I1
EX0403 | 2 | 01 I1, 02 I1
)";

struct Item {
  std::string code;  // "EX010101"
  char kind;         // 'T', 'I', or 'C' for the call sign
  std::size_t width;
  int group() const { return std::stoi(code.substr(2, 2)); }
  int tag() const { return 2000000 + std::stoi(code.substr(2)); }
};

std::string trim(const std::string& s) {
  const auto a = s.find_first_not_of(' ');
  const auto b = s.find_last_not_of(' ');
  return a == std::string::npos ? std::string() : s.substr(a, b - a + 1);
}

// The table's rows: each sub-group's items, in read order.
std::vector<std::vector<Item>> subGroups() {
  std::vector<std::vector<Item>> out;
  std::istringstream lines(kItemTable);
  for (std::string line; std::getline(lines, line);) {
    if (line.empty()) continue;
    std::istringstream cols(line);
    std::string sub, count, items;
    std::getline(cols, sub, '|');
    std::getline(cols, count, '|');
    std::getline(cols, items);
    std::vector<Item> row;
    std::istringstream entries(items);
    for (std::string e; std::getline(entries, e, ',');) {
      e = trim(e);
      const std::string code = trim(sub) + e.substr(0, 2);
      if (e.substr(3) == "call sign")
        row.push_back(Item{code, 'C', 12});
      else
        row.push_back(Item{code, e[3], static_cast<std::size_t>(e[4] - '0')});
    }
    EXPECT_EQ(row.size(), std::stoul(count)) << sub;
    out.push_back(std::move(row));
  }
  return out;
}

std::vector<Item> allItems() {
  std::vector<Item> out;
  for (const auto& row : subGroups()) out.insert(out.end(), row.begin(), row.end());
  return out;
}

std::string digits(int n, std::size_t width) {
  std::string s = std::to_string(n);
  return std::string(width - s.size(), '0') + s;
}

}  // namespace

TEST(MenuItemTable, ReadButtonsAskForEachSubGroupInOrder) {
  test::Rig rig;
  rig.openPortAndSettle();
  std::map<int, std::vector<std::string>> expected;  // group -> one write per sub-group
  for (const auto& row : subGroups()) {
    std::string list;
    for (const Item& item : row) list += item.code + ";";
    expected[row.front().group()].push_back(list);
  }
  ASSERT_EQ(expected.size(), 4u);
  for (auto& [group, lists] : expected) {
    lists.back() += "BI1;";  // the last list goes through the dispatcher's tail
    rig.port->clearWrites();
    ui::Control* read = rig.window.viewWithTag("settingsTab", group - 1, 2000000 + group * 10000 + 100);
    ASSERT_NE(read, nullptr) << "group " << group;
    read->click();
    std::vector<std::string> writes;
    for (const auto& w : rig.port->writes()) writes.push_back(w.bytes);
    EXPECT_EQ(writes, lists) << "group " << group;
  }
}

TEST(MenuItemTable, EverySettingsControlWritesAndReadsItsItemsWidth) {
  test::Rig rig;
  rig.openPortAndSettle();
  const std::vector<Item> items = allItems();
  ASSERT_EQ(items.size(), 194u);
  int popUps = 0;
  for (int page = 0; page < 4; ++page)
    for (ui::Control* c : rig.window.onPage("settingsTab", page)) popUps += c->kind() == ui::Kind::PopUp;
  EXPECT_EQ(popUps, 193) << "one pop-up per item but the call sign, and no other";

  for (const Item& item : items) {
    SCOPED_TRACE(item.code);
    ui::Control* c = rig.window.viewWithTag("settingsTab", item.group() - 1, item.tag());
    ASSERT_NE(c, nullptr);
    if (item.kind == 'C') {
      EXPECT_EQ(c->kind(), ui::Kind::TextField);
      continue;
    }
    ASSERT_EQ(c->kind(), ui::Kind::PopUp);
    ASSERT_GE(c->entries().size(), 4u);
    rig.port->clearWrites();
    c->choose(1);
    if (item.kind == 'T') {
      for (const ui::Entry& e : c->entries()) ASSERT_EQ(e.title.size(), item.width) << e.title;
      const std::string value = c->entries()[1].title;
      EXPECT_EQ(rig.written(), item.code + value + ";");
      // An answer carries exactly the width: a character more is not part of the value.
      const std::string other = c->entries()[2].title;
      rig.receive(item.code + other + "9;");
      EXPECT_EQ(c->titleOfSelectedItem(), other);
    } else {
      EXPECT_EQ(rig.written(), item.code + digits(1, item.width) + ";");
      rig.receive(item.code + digits(3, item.width) + "9;");
      EXPECT_EQ(c->selectedIndex(), 3);
    }
  }
}

TEST(MenuItemTable, SimulatorAnswersEveryItemAtItsWidthAndNoOther) {
  sim::Transceiver radio{sim::Transceiver::Options{}};
  std::string heard;
  radio.setOutput([&](std::string_view a) { heard += a; });
  auto ask = [&](const std::string& text) {
    heard.clear();
    radio.write(text);
    return heard;
  };

  const std::vector<Item> items = allItems();
  std::set<std::string> listed;
  for (const Item& item : items) {
    SCOPED_TRACE(item.code);
    listed.insert(item.code);
    const std::string answer = ask(item.code + ";");
    ASSERT_EQ(answer.size(), item.code.size() + item.width + 1) << answer;
    // A set of the item's width is taken and read back; one character more is refused.
    const std::string value = item.kind == 'T' ? std::string(item.width, '1') : digits(2, item.width);
    const std::string set = item.kind == 'C' ? "AB1CD       " : value;
    EXPECT_EQ(ask(item.code + set + ";"), "");
    EXPECT_EQ(ask(item.code + ";"), item.code + set + ";");
    EXPECT_EQ(ask(item.code + set + "1;"), "?;");
    // A position is digits only; a value shown as its own text may be any text.
    if (item.kind == 'I') {
      EXPECT_EQ(ask(item.code + std::string(item.width, 'A') + ";"), "?;");
    }
  }
  // No item of groups 01 to 04 answers that the table does not list.
  for (int g = 1; g <= 4; ++g)
    for (int s = 1; s <= 9; ++s)
      for (int i = 1; i <= 30; ++i) {
        const std::string code = "EX" + digits(g, 2) + digits(s, 2) + digits(i, 2);
        if (!listed.count(code)) {
          EXPECT_EQ(ask(code + ";"), "?;") << code;
        }
      }
}
