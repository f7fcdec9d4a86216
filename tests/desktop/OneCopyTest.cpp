#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>
#include <memory>
#include <optional>
#include <thread>
#include <tuple>

#include "support/ChildProcess.h"
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

TEST(OneCopy, OfSeveralStartsAtOnceOneIsTheFirstAlsoAfterItWasKilled) {
  const QTemporaryDir folder;
  const auto note = [&](const std::string& word) { return folder.filePath(QString::fromStdString(word)); };
  for (int round = 0; round < 5; ++round) {
    // Each is a process of its own, and is killed with the value.
    std::vector<std::unique_ptr<ChildProcess>> starts;
    std::optional<OneCopy> copy;
    for (int number = 0; number < 3; ++number) {
      const auto start = [&] {
        copy.emplace(folder.path());
        const char* const outcome = copy->isFirst() ? "first" : copy->raiseFirst({}) ? "told" : "lost";
        std::ignore = QFile(note(outcome + std::to_string(number))).open(QIODevice::WriteOnly);
      };
      starts.push_back(std::make_unique<ChildProcess>(std::vector<std::function<void()>>{[] {}, start}));
    }
    {
      std::vector<std::jthread> together;
      for (const auto& start : starts) {
        together.emplace_back([&start] { start->goOn(); });
      }
    }
    const QDir notes(folder.path());
    EXPECT_EQ(notes.entryList({"first*"}).size(), 1) << round;
    EXPECT_EQ(notes.entryList({"told*"}).size(), 2) << round;
    for (const QString& name : notes.entryList({"first*", "told*", "lost*"})) {
      QFile::remove(folder.filePath(name));
    }
  }
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
