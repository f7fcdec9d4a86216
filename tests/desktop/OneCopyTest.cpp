#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>
#include <memory>
#include <thread>

#include "surfaces/desktop/OneCopy.h"

namespace lumenary {
namespace {

TEST(OneCopy, TellsTheFirstOneOfEveryFurtherStart) {
  const QTemporaryDir folder;
  auto first = std::make_unique<OneCopy>(folder.path());
  ASSERT_TRUE(first->isFirst());
  std::vector<QByteArray> asked;
  std::vector<bool> answered;
  std::jthread further([&] {  // starts before the first one listens to it
    for (const QByteArray& place : {QByteArray(), QByteArray("/home/anna/\xff\n")}) {
      const OneCopy copy(folder.path());
      answered.push_back(!copy.isFirst() && copy.raiseFirst(place));
    }
  });
  first->onAnother([&](const QByteArray& place) { asked.push_back(place); });
  ASSERT_TRUE(QTest::qWaitFor([&] { return asked.size() == 2; }));
  further.join();
  EXPECT_EQ(answered, (std::vector{true, true}));
  EXPECT_EQ(asked, (std::vector<QByteArray>{{}, "/home/anna/\xff\n"}));
  first.reset();
  EXPECT_TRUE(OneCopy(folder.path()).isFirst()) << "the first one has gone";
}

TEST(OneCopy, IsNotHeldUpByOneThatCrashed) {
  const QTemporaryDir folder;
  QFile lock(folder.filePath("hearthkeep.lock"));
  ASSERT_TRUE(lock.open(QIODevice::WriteOnly));
  lock.write("2147483000\nLumenary\n" + QSysInfo::machineHostName().toUtf8() + "\n\n\n");
  lock.close();
  QFile socket(folder.filePath("hearthkeep.socket"));
  ASSERT_TRUE(socket.open(QIODevice::WriteOnly));
  socket.close();
  EXPECT_TRUE(OneCopy(folder.path()).isFirst());
}

}  // namespace
}  // namespace lumenary
