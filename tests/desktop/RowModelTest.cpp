#include <gtest/gtest.h>

#include <QAbstractItemModelTester>
#include <QSignalSpy>

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
