#include <gtest/gtest.h>

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <algorithm>
#include <random>

#include "surfaces/desktop/RowModel.h"

namespace lumenary {
namespace {

using Keys = std::vector<QString>;

RowModel::Rows rowsOf(const Keys& keys, const QString& value) {
  RowModel::Rows rows;
  for (const QString& key : keys) {
    rows.push_back({{"key", key}, {"value", value}});
  }
  return rows;
}

Keys keysOf(const RowModel& model) {
  Keys keys;
  for (const QVariantMap& row : model.rows()) {
    keys.push_back(row.value("key").toString());
  }
  return keys;
}

TEST(RowModel, BecomesTheWantedListStepByStep) {
  RowModel model({"key", "value"}, nullptr);
  const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
  const std::vector<Keys> lists = {
      {"a", "b", "c"}, {"c", "b", "a"},  {"a", "x", "b"},  {"b"},      {}, {"p", "q"}, {"q", "r", "s", "p"},
      {"s", "q"},      {"s", "s2", "q"}, {"q", "q", "s2"}, {"q", "s2"}};
  for (const Keys& wanted : lists) {
    model.setRows(rowsOf(wanted, "1"));
    EXPECT_EQ(keysOf(model), wanted);
    EXPECT_EQ(model.count(), static_cast<int>(wanted.size()));
  }
  EXPECT_EQ(model.indexOfKey("s2"), 1) << "two of one key leave no ghost";
  EXPECT_EQ(model.indexOfKey("gone"), -1);
  EXPECT_TRUE(model.at(7).isEmpty());
}

TEST(RowModel, BecomesAnyListFromAnyOther) {
  RowModel model({"key", "value"}, nullptr);
  const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
  // A second list that only hears what changes shows the same.
  Keys heard;
  const auto keyAt = [&](int row) { return model.at(row).value("key").toString(); };
  QObject::connect(&model, &RowModel::rowsInserted, [&](const QModelIndex&, int first, int last) {
    for (int row = first; row <= last; ++row) {
      heard.insert(heard.begin() + row, keyAt(row));
    }
  });
  QObject::connect(&model, &RowModel::rowsRemoved, [&](const QModelIndex&, int first, int last) {
    heard.erase(heard.begin() + first, heard.begin() + last + 1);
  });
  QObject::connect(&model, &RowModel::rowsMoved, [&](const QModelIndex&, int from, int, const QModelIndex&, int to) {
    std::rotate(heard.begin() + to, heard.begin() + from, heard.begin() + from + 1);
  });
  QObject::connect(&model, &RowModel::modelReset, [&] { heard = keysOf(model); });
  std::mt19937 random(7);
  for (int round = 0; round < 300; ++round) {
    Keys wanted;
    for (char letter = 'a'; letter < 'm'; ++letter) {
      if (random() % 3 != 0) {
        wanted.emplace_back(QChar::fromLatin1(letter));
      }
    }
    std::ranges::shuffle(wanted, random);
    const RowModel::Rows rows = rowsOf(wanted, QString::number(random() % 2));
    model.setRows(rows);
    ASSERT_EQ(model.rows(), rows) << round;
    ASSERT_EQ(heard, wanted) << round;
  }
}

TEST(RowModel, LeavesAloneWhatStaysTheSame) {
  RowModel model({"key", "value"}, nullptr);
  model.setRows(rowsOf({"a", "b"}, "1"));
  const QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
  const QSignalSpy removed(&model, &QAbstractItemModel::rowsRemoved);
  const QSignalSpy reset(&model, &QAbstractItemModel::modelReset);
  model.setRows(rowsOf({"a", "b"}, "1"));
  EXPECT_EQ(changed.count(), 0);
  model.setRows(rowsOf({"a", "b"}, "2"));
  EXPECT_EQ(changed.count(), 2);
  model.setRows(rowsOf({"b"}, "2"));
  EXPECT_EQ(removed.count(), 1);
  EXPECT_EQ(reset.count(), 0) << "a list that begins anew would lose its place and its focus";
}

}  // namespace
}  // namespace lumenary
