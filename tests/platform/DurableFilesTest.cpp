#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>

#include "platform/linux/LinuxDurableFiles.h"
#include "support/FaultKernel.h"
#include "support/TemporaryHome.h"

namespace lumenary {
namespace {

const Date longAgo = std::chrono::sys_days(std::chrono::year(2001) / 6 / 15);

TEST(LinuxDurableFiles, RemoveOnlyWhatAKilledWriteLeftLongAgo) {
  TemporaryHome home;
  home.build({{"log.json"},
              {"log.json.new-12"},
              {"young.json.new-12"},
              {"locked.json.new-12"},
              {"log.json.new-"},
              {"log.json.new-1a"},
              {"folder.new-12/"},
              {"link.new-12", LinkTo{"log.json"}}});
  for (const std::string& name : namesIn(home.root())) {
    if (!name.starts_with("young")) {
      home.setModified(name, longAgo);
    }
  }
  LinuxKernel kernel;
  LinuxDurableFiles files(kernel);
  const auto lock = files.lock(home.path("locked.json.new-12"));
  auto expected = namesIn(home.root());
  expected.erase("log.json.new-12");
  files.removeRemains(home.root());
  EXPECT_EQ(namesIn(home.root()), expected);
}

TEST(LinuxDurableFiles, TellAJournalInUseByItsAgeWhereThereAreNoLocks) {
  TemporaryHome home;
  home.build({{"young"}, {"old"}});
  home.setModified("old", longAgo);
  FaultKernel recording;
  ASSERT_FALSE(LinuxDurableFiles(recording).isGrowing(home.path("old")));
  const auto& calls = recording.calls();
  const auto call = static_cast<std::size_t>(std::ranges::find(calls, "flock") - calls.begin());
  for (const auto& [name, error, isGrowing] :
       {std::tuple("young", ENOLCK, true), std::tuple("old", ENOLCK, false), std::tuple("old", EWOULDBLOCK, true)}) {
    FaultKernel kernel({.kind = Fault::Kind::fail, .call = call, .error = error});
    EXPECT_EQ(LinuxDurableFiles(kernel).isGrowing(home.path(name)), isGrowing) << name << " " << error;
  }
}

}  // namespace
}  // namespace lumenary
