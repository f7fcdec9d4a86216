// live_times make PROCESSES: starts that many idle processes with a TCP and a UDP socket each, says "ready" and waits
// until nothing more comes on standard input; then they end.
//
// live_times WHAT ROUNDS: takes a reading that often; WHAT is metrics, usage, ports, again (the ports, where nothing
// changed) or pass (what a pass each two seconds reads). Prints the
// wall time and the processor time of each in nanoseconds and what it found, as a line of JSON.

#include <netinet/in.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <time.h>
#include <unistd.h>

#include <charconv>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/JsonWriter.h"
#include "monitoring/PortInspector.h"
#include "monitoring/ProcessInspector.h"
#include "monitoring/SystemMetricsService.h"
#include "platform/linux/LinuxAppControl.h"
#include "platform/linux/LinuxFileReader.h"
#include "platform/linux/LinuxProcessReader.h"
#include "platform/linux/LinuxSocketReader.h"
#include "platform/linux/LinuxSystemCounters.h"
#include "platform/linux/LinuxToolRunner.h"

namespace {

using namespace lumenary;

class NoApps final : public AppRegistry {
 public:
  std::vector<RegisteredApp> apps() const override { return {}; }
  bool isInstalled(std::string_view) const override { return false; }
  std::vector<std::string> watchedFolders() const override { return {}; }
};

void bindLoopback(int socket) {
  sockaddr_in place{};
  place.sin_family = AF_INET;
  place.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  ::bind(socket, reinterpret_cast<sockaddr*>(&place), sizeof place);
}

int make(int count) {
  for (int made = 0; made < count; ++made) {
    int ready[2];
    if (::pipe(ready) != 0) {
      return 1;
    }
    const pid_t pid = ::fork();
    if (pid < 0) {
      return 1;
    }
    if (pid == 0) {
      ::prctl(PR_SET_PDEATHSIG, SIGTERM);
      ::close(STDIN_FILENO);
      const int tcp = ::socket(AF_INET, SOCK_STREAM, 0);
      bindLoopback(tcp);
      ::listen(tcp, 1);
      bindLoopback(::socket(AF_INET, SOCK_DGRAM, 0));
      void* const memory = ::mmap(nullptr, 1 << 20, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
      std::memset(memory, 1, 1 << 20);
      ::close(ready[0]);
      ::close(ready[1]);
      for (;;) {
        ::pause();
      }
    }
    ::close(ready[1]);
    char byte = 0;
    [[maybe_unused]] const auto end = ::read(ready[0], &byte, 1);
    ::close(ready[0]);
  }
  std::puts("ready");
  std::fflush(stdout);
  char byte = 0;
  while (::read(STDIN_FILENO, &byte, 1) > 0) {
  }
  return 0;
}

std::int64_t processorTime() {
  timespec now{};
  ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return (static_cast<std::int64_t>(now.tv_sec) * 1'000'000'000) + now.tv_nsec;
}

int measure(std::string_view what, int rounds) {
  const NoApps apps;
  const LinuxToolRunner tools;
  LinuxSystemCounters counters;
  LinuxProcessReader processes(apps);
  const LinuxSocketReader sockets;
  const LinuxFileReader files;
  LinuxAppControl control(tools, processes, apps, "");
  SystemMetricsService metrics(counters);
  ProcessInspector inspector(processes, control, "person");
  PortInspector ports(sockets, processes, files, "/home/person");

  std::size_t found = 0;
  Date now{};
  const auto takeUsage = [&] {
    now += std::chrono::seconds(2);
    found = 0;
    for (const AppMemoryUsage& usage : inspector.appUsage(now)) {
      found += usage.pids.size();
    }
    inspector.snapshots(20, now);
  };
  const auto lookAtPorts = [&] { found = ports.inspect().size(); };
  const auto takePorts = [&] { found = ports.listeningPorts(now).size(); };
  const auto takeMetrics = [&] { found = metrics.capture(now).totalMemoryBytes > 0 ? 1 : 0; };
  std::function<void()> reading;
  if (what == "metrics") {
    reading = takeMetrics;
  } else if (what == "usage") {
    reading = takeUsage;
  } else if (what == "ports") {
    reading = lookAtPorts;
  } else if (what == "again") {
    reading = takePorts;
  } else if (what == "pass") {
    reading = [&] {
      takeMetrics();
      takePorts();
      takeUsage();
    };
  } else {
    return 2;
  }
  reading();  // the first one learns what the others only look at again
  std::vector<std::int64_t> wall;
  std::vector<std::int64_t> processor;
  for (int round = 0; round < rounds; ++round) {
    const auto begin = std::chrono::steady_clock::now();
    const std::int64_t processorBegin = processorTime();
    reading();
    processor.push_back(processorTime() - processorBegin);
    wall.push_back((std::chrono::steady_clock::now() - begin).count());
  }
  JsonWriter json(JsonWriter::Layout::compact);
  json.beginObject().key("what").string(what).key("found").unsignedInteger(found);
  for (const auto& [name, times] : {std::pair("times", &wall), std::pair("processor", &processor)}) {
    json.key(name).beginArray();
    for (const std::int64_t time : *times) {
      json.integer(time);
    }
    json.endArray();
  }
  std::puts(json.endObject().take().c_str());
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  int count = 0;
  if (argc != 3 || std::from_chars(argv[2], argv[2] + std::strlen(argv[2]), count).ec != std::errc() || count < 1) {
    std::fputs("live_times make PROCESSES | live_times metrics|usage|ports|again|pass ROUNDS\n", stderr);
    return 2;
  }
  return std::string_view(argv[1]) == "make" ? make(count) : measure(argv[1], count);
}
