#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "apps/AppInventory.h"
#include "apps/AppRemovalWatcher.h"
#include "apps/BackgroundItem.h"
#include "cleanup/CleanSelection.h"
#include "cleanup/CleanupActs.h"
#include "cleanup/CleanupCandidate.h"
#include "cleanup/DeveloperProject.h"
#include "cleanup/DeveloperScanner.h"
#include "cleanup/DuplicateGroup.h"
#include "cleanup/ItemEvidence.h"
#include "cleanup/LookFirstGroup.h"
#include "cleanup/StorageSafety.h"
#include "cleanup/StorageTrashGate.h"
#include "cleanup/TidyPlan.h"
#include "cleanup/TidyPlanner.h"
#include "cleanup/TrashContents.h"
#include "core/AppEngine.h"
#include "core/AppModelTypes.h"
#include "core/ClosetModel.h"
#include "core/FolderChanges.h"
#include "core/MonitoringCoordinator.h"
#include "core/Published.h"
#include "core/RoomRules.h"
#include "core/UndoManager.h"
#include "core/WardrobeSnapshot.h"
#include "core/async/Scheduler.h"
#include "core/async/Task.h"
#include "core/async/TaskScope.h"
#include "monitoring/MemoryOptimizer.h"
#include "monitoring/PortInspector.h"
#include "monitoring/ProcessInspector.h"
#include "monitoring/SystemMetricsService.h"
#include "platform/Platform.h"
#include "storage/DiskForecast.h"
#include "storage/RemovedFromScan.h"
#include "storage/ScanStore.h"
#include "storage/StorageScanResult.h"

namespace lumenary {

/// The application's mind: all that the screens show, and every flow from a scan to an undo. It is the only writer of
/// its fields. It belongs to one thread, which waits for nothing but a look at how full a volume is; what blocks runs
/// as jobs on values, and publishes only what is still asked for when it ends.
///
/// A `Task` is a flow: whoever calls it awaits it, or gives it to `run`. The files AppModel….cpp hold a chapter each.
class AppModel {
 public:
  template <class Value>
  using Field = Published<Value, AppModel>;
  using Scan = std::shared_ptr<const StorageScanResult>;  ///< null where there is none; never changed

  enum class Services : std::uint8_t {
    none,  ///< state only: no task, watcher or observer
    all,
  };

  static const FileURL macVolumeRoot;  ///< "/", the startup disk

  /// All must outlive the model; the platform and the store the workers' threads as well, as jobs go on to their end.
  /// With services, what was stored is read and shown; a disk scan never starts by itself.
  AppModel(Platform& platform, ScanStore& store, Scheduler& scheduler, Services services);
  ~AppModel();
  AppModel(const AppModel&) = delete;
  AppModel& operator=(const AppModel&) = delete;

  // What the screens read.

  Field<Scan> storageResult;  ///< the current scan of `selectedDrive`
  Field<std::optional<ScanProgress>> scanProgress;
  Field<bool> isScanning{false};
  Field<std::optional<std::string>> scanError;  ///< of the last scan, a sentence for the person
  Field<bool> hasFullDiskAccess{true};
  Field<std::optional<VolumeSnapshot>> volumeSnapshot;  ///< of the selected drive
  Field<std::vector<SystemSnapshot>> systemHistory;     ///< of the last hour
  Field<std::vector<SystemSnapshot>> activityHistory;   ///< the same for a chart
  Field<std::vector<ProcessSnapshot>> processes;
  Field<std::vector<AppMemoryUsage>> appMemory;
  Field<bool> hasProcessSample{false};
  Field<std::vector<ScanHistoryPoint>> scanHistory;
  Field<std::vector<PortEntry>> ports;
  Field<bool> hasPortSample{false};
  Field<std::vector<DeveloperProject>> projects;
  Field<std::vector<CleanupCandidate>> cleanupCandidates;
  Field<std::vector<CleanupOutcome>> cleanupOutcomes;       ///< of the last `clean`
  Field<std::vector<CleanupOutcome>> storageTrashOutcomes;  ///< of the last removal of scanned things
  Field<std::vector<CleanupTransaction>> cleanupTransactions;
  Field<std::optional<FileURL>> developerRoot;  ///< the code folder
  Field<DeveloperScanner::LastUsed> candidateLastUsed;
  Field<bool> isMeasuringLastUsed{false};
  Field<std::optional<std::string>> storageFocusPath;
  Field<std::optional<StorageBrowseRequest>> storageBrowseRequest;
  Field<std::optional<AppInventory>> appInventory;
  Field<std::optional<std::vector<BackgroundItem>>> backgroundItems;  ///< none until they were read
  Field<std::optional<std::string>> actionNotice;
  Field<std::optional<RemovedAppsNotice>> removedAppsNotice;
  Field<std::shared_ptr<const WardrobeSnapshot>> wardrobeSnapshot;  ///< of the scan, null until it is derived
  Field<std::shared_ptr<const ClosetModel>> closetModel;            ///< the same
  Field<bool> isLoadingApps{false};
  Field<std::vector<DriveInfo>> drives;
  Field<FileURL> selectedDrive{macVolumeRoot};
  Field<std::vector<DuplicateGroup>> duplicates;
  Field<std::optional<TidyPlan>> tidyPlan;
  Field<std::vector<TidyReceipt>> tidyLog;
  Field<bool> isTidying{false};
  Field<std::optional<UndoableTrash>> lastTrash;
  Field<std::optional<std::int64_t>> trashBytes;     ///< none where the Trash can't be read
  Field<std::optional<double>> startupForecastDays;  ///< until the startup disk is full
  Field<CleanSelection::Titles> busyTidyTitles;
  Field<std::set<std::string>> chosenCrates;
  Field<CrateFocus> crateFocus{CrateFocus::all};

  /// `startupForecastDays` while the startup disk is selected.
  std::optional<double> diskForecastDays() const;
  RoomInputs roomInputs() const;
  /// The text of a report that names no file, path or project.
  std::string diagnosticsText() const;

  /// Runs a flow that nobody awaits; it ends with the model.
  void run(Task<> task) { tasks_.spawn(std::move(task)); }

  // What is known of single things.

  struct Explanation {
    ItemEvidence evidence;
    StorageSafety safety;
    std::string removal;                   ///< what it would do, one sentence
    std::optional<std::string> betterWay;  ///< to get the space, where one is known
    bool canTrash = false;
  };
  Task<Explanation> explain(StorageNode node, std::stop_source stop = std::stop_source());
  /// Folders about which a person should decide.
  Task<std::vector<LookFirstGroup>> lookFirstGroups();
  /// At most `limit` things of the scan whose name or path fits; see `StorageScanResult::search`. Empty after a stop.
  Task<std::vector<StorageNode>> searchScan(std::string query, std::size_t limit, std::stop_source stop);
  /// Shows a file in the file manager.
  void reveal(const std::string& path);
  /// Writes the report to a file as a whole or not at all.
  Task<> exportDiagnostics(std::string path);

  // Scans and drives.

  /// Once it has ended, the folders of the scan are found without a wait.
  Task<> indexScan();
  void scanStorage(const FileURL& url);
  void cancelStorageScan();
  void selectDrive(const FileURL& url);
  /// Derives the wardrobe, and with it the closet, from the scan, unless they are there.
  Task<> prepareStorageModels(bool includeCloset);
  void applicationBecameActive();
  MonitoringCoordinator& monitoringCoordinator() { return monitoring_; }

  // What can go.

  /// Duplicates, the plan and the candidates of the scan; once for each scan.
  Task<> refreshInsights();
  Task<> measureLastUsed();
  /// Of the candidates with these paths, of all without; what is gone leaves the list.
  Task<> remeasureCleanupCandidates(std::optional<std::set<std::string>> only);
  void scanDeveloperProjects(const FileURL& url);
  /// The code folder of the last time, if it still exists.
  void restoreCodeFolder();
  void refreshTrashSize();

  // Apps and what starts by itself.

  Task<> refreshApps();
  Task<> refreshBackgroundItems();
  Task<> setBackgroundItem(BackgroundItem item, bool enabled);
  /// Why it couldn't be removed; none where it was.
  Task<std::optional<std::string>> removeBackgroundItem(BackgroundItem item);

  // Cleaning. Each act is one transaction on record, and can be taken back. A surface disables its button meanwhile.

  Task<> clean(std::vector<CleanupCandidate> candidates);
  Task<std::vector<CleanupOutcome>> removeStorageEntries(std::vector<FileEntry> entries,
                                                         CleanupTransaction::Source source);
  Task<std::vector<CleanupOutcome>> moveAppItemsToTrash(std::vector<FileEntry> entries);
  /// None where nothing went.
  Task<std::optional<TidyReceipt>> runTidy(bool automatic, bool safeOnly, CleanSelection::Titles skipping);
  /// How many items failed to move. What one press touches becomes one transaction.
  Task<std::size_t> clear(bool includingTidy, CleanSelection::Titles skipping, std::vector<LeftoverGroup> leftovers,
                          std::vector<CleanupCandidate> candidates);
  CleanSelection suggestedClear() const;
  Task<std::size_t> clearSuggested(CleanSelection::Titles excluding);
  Task<std::size_t> clearChosen(CleanSelection::Choice choice);
  /// Without installers and build files; none where nothing is left.
  std::optional<TidyPlan> safeTidyPlan() const;
  Task<> refreshBusyTools();

  // The way back. The text is the failure, none means done.

  Task<std::optional<std::string>> undoTrash(UUID transactionID);
  Task<> redoTrash(UUID transactionID);
  Task<std::optional<std::string>> restoreCleanupItem(UUID transactionID, UUID itemID);
  Task<TrashEmptyResult> emptyTrash(EmptyingProgress progress = {}, std::stop_source stop = std::stop_source());
  /// An estimate: what was in the Trash when it was emptied.
  std::int64_t confirmedReclaimedBytes() const;
  void openTrash();
  UndoManager& undoManager() { return undoManager_; }

  // What runs.

  /// Why it still runs; none where it quit.
  Task<std::optional<std::string>> quitAndConfirm(AppMemoryUsage usage);
  MemoryOptimizer& memoryOptimizer() { return optimizer_; }

  // What the screens keep here.

  void showNotice(std::optional<std::string> text) { actionNotice.setIfChanged(std::move(text)); }
  void focusStorage(std::optional<std::string> path) { storageFocusPath.setIfChanged(std::move(path)); }
  void browseStorage(const std::string& target);
  void finishBrowsing() { storageBrowseRequest.setIfChanged(std::nullopt); }
  void chooseCrates(std::set<std::string> titles) { chosenCrates.setIfChanged(std::move(titles)); }
  void focusCrates(CrateFocus focus) { crateFocus.setIfChanged(focus); }
  void rememberRoom(AppDestination room);
  void dismissRemovedAppsNotice() { removedAppsNotice.setIfChanged(std::nullopt); }

  /// Shows a line on the small surface; false where that isn't visible. A surface sets it.
  std::function<bool(const std::string& line)> notchFlash = [](const std::string&) { return false; };

 private:
  /// Of the acts of one press.
  struct Records {
    std::vector<CleanupTransaction> acts{};
    bool isOnePress = false;  ///< the undo is offered for all of them together
  };
  struct TidyRequest {
    bool automatic = false;
    bool safeOnly = false;
    CleanSelection::Titles skipping{};
  };
  struct Insights {
    std::vector<DuplicateGroup> duplicates;
    std::vector<FileEntry> junk;
    TidyPlan plan;
  };

  // Start-up.
  void startServices();
  Task<> startUp(std::optional<Job<Scan>> earlyScan);
  void observeMachine();
  Task<> runElsewhere(std::function<bool()> work, std::function<void(bool)> done);
  void writeSetting(const std::string& key, const std::string& value);

  // Scans and drives.
  /// Publishes what the task derives from the scan, unless another scan came meanwhile.
  template <class Model>
  Task<> publishDerived(std::optional<Job<std::shared_ptr<const Model>>>& task,
                        Field<std::shared_ptr<const Model>>& field, std::uint64_t revision);
  Job<Scan> loadScan(const std::string& root);
  Task<> scan(FileURL url, UUID request, std::stop_source stop);
  Task<> recordScan(Scan scan);
  Task<> loadDrive(FileURL url, UUID request);
  Task<> deriveFromScan();
  UUID newScanRequest();
  void setStorageResult(const Scan& scan);
  Job<bool> saveScan(Scan scan);
  std::optional<VolumeSnapshot> capture(const FileURL& url) const { return engine_->volumeMetrics.capture(url.path); }
  void refreshVolumeSnapshot() { volumeSnapshot.setIfChanged(capture(*selectedDrive)); }
  Task<> drivesChanged();
  void recordDiskSample();
  Task<> writeDiskSample(DiskSample sample);
  void refreshDiskForecast(std::optional<VolumeSnapshot> volume);

  // What can go.
  static TidyPlan planOf(const AppEngine& engine, const StorageTrashGate& gate, const StorageScanResult& scan,
                         std::span<const DuplicateGroup> duplicates, std::span<const FileEntry> junk,
                         bool includeBuildFiles);
  Job<Insights> startInsights(Scan scan);
  void publishBaseInsights(TidyPlan plan, std::uint64_t revision);
  void publishPlannedCandidates();
  Task<> findCodeFolder();
  Task<> findProjects(FileURL url);
  Task<> measureTrash();

  // Apps.
  Task<> watchApps();
  Task<> checkRemovedApps();
  Task<> appsWereRemoved(std::vector<RemovedApp> removed);
  /// Asks the one gate for the right to speak up, and takes it.
  Job<bool> mayInterrupt();
  Task<> notify(std::string title, std::string body, std::string identifier);

  // What runs.
  Task<> performMonitoringPass(MonitoringDemand demand);
  Task<> sampleProcesses();
  Task<> samplePorts();
  void recordMetrics();

  // Cleaning.
  Task<> cleanCandidates(std::vector<CleanupCandidate> candidates, Records& records);
  Task<std::vector<CleanupOutcome>> removeItems(std::vector<StorageMove> moves, CleanupTransaction::Source source,
                                                Records& records);
  Task<std::vector<CleanupOutcome>> moveAppItems(std::vector<FileEntry> entries, Records& records);
  Task<std::optional<TidyReceipt>> tidy(TidyRequest request, Records& records);
  Task<TidyPlan> planToRun(const TidyRequest& request);
  static std::vector<std::string> titlesOf(const TidyPlan& plan);
  Task<> findBusyTitles(std::vector<std::string> titles);
  Task<> patchScan(std::vector<RemovedItem> removed);
  Task<> merge(Records& records);
  Task<> considerAutoTidy();
  struct AutoTidySettings {
    AutoTidy wanted = AutoTidy::off;
    std::optional<Date> last{};
  };
  bool isAutoTidyDue(const AutoTidySettings& settings, Date date) const;
  void offerUndo(const Records& records, UndoManager::Cause cause = UndoManager::Cause::act);
  enum class LogState : std::uint8_t {
    unsaved,  ///< may lack records; what it changed outranks the disk until that holds it
    written,  ///< as an act has just written it
    read,     ///< as it was found
  };
  static LogState written(bool isSaved) { return isSaved ? LogState::written : LogState::unsaved; }
  void dropEmptyOffer();
  void publishLog(std::vector<CleanupTransaction> log, LogState state);
  void publishDone(CleanupActs::Done done, Records& records);
  Task<> reloadLog();
  Task<> undoAndTell(UUID transactionID);

  Date now() const { return platform_.now(); }
  Executor& owner() { return scheduler_.owner(); }

  Platform& platform_;
  Scheduler& scheduler_;
  std::shared_ptr<AppEngine> engine_;
  std::shared_ptr<const StorageTrashGate> gate_;  ///< made afresh when drives change; jobs keep theirs with the engine
  SystemMetricsService metrics_;
  MemoryOptimizer optimizer_;

  std::uint64_t storageRevision_ = 0;  ///< one more with each assignment to `storageResult`
  UUID scanRequestID_ = UUID::random();
  std::stop_source scanStop_;
  std::optional<Job<std::shared_ptr<const WardrobeSnapshot>>> wardrobeTask_;
  std::optional<Job<std::shared_ptr<const ClosetModel>>> closetTask_;
  std::optional<Job<Insights>> insightsTask_;
  std::optional<Job<AppInventory>> appsTask_;
  std::size_t lastUsedMeasurements_ = 0;
  /// Of several that run at once the one that was asked for last is shown.
  std::uint64_t trashRequest_ = 0;
  std::uint64_t backgroundRequest_ = 0;
  std::uint64_t projectsRequest_ = 0;
  std::set<std::string> movedDuringInventory_;
  std::vector<FileEntry> junk_;
  std::vector<DiskSample> diskSamples_;
  bool isRecordingSample_ = false;
  Date lastAutoTidyConsideration_ = Date::min();
  Date lastPortSample_ = Date::min();

  std::vector<CleanupTransaction> unsavedTransactions_;  ///< as they couldn't be written to the log
  std::map<UUID, CleanupActs::PutBack> putBack_;         ///< of transactions that were undone
  UndoManager undoManager_;

  std::unique_ptr<FolderChanges> logChanges_;
  std::unique_ptr<FolderChanges> appChanges_;
  std::optional<Executor::TimerID> mountTimer_;
  bool isWatchingMounts_ = false;
  MonitoringCoordinator monitoring_;
  std::shared_ptr<bool> lifetime_ = std::make_shared<bool>(true);  ///< what a call posted by a job looks at
  TaskScope tasks_;
};

}  // namespace lumenary
