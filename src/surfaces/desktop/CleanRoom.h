#pragma once

#include <set>
#include <string>

#include "surfaces/desktop/Presenter.h"
#include "surfaces/desktop/RowModel.h"

namespace lumenary {

/// The Clean room: what can go, in groups that a person ticks; the record of acts; the Trash.
class CleanRoom : public Presenter {
  Q_OBJECT

 public:
  explicit CleanRoom(AppModel& model);

  Q_INVOKABLE void tick(const QString& key, bool isTicked);
  Q_INVOKABLE void clear();
  Q_INVOKABLE void putBack(const QString& act);
  Q_INVOKABLE void putBackItem(const QString& act, const QString& item);
  Q_INVOKABLE void emptyTrash();
  /// What is behind a row of the plan: maps with name, place and size (empty where it isn't known alone).
  Q_INVOKABLE QVariantList itemsBehind(const QString& key) const;
  /// The items of an act: maps with key, name, place, size, state, canPutBack.
  Q_INVOKABLE QVariantList itemsOf(const QString& act) const;

 private:
  void refresh() override;
  void prepare() override;
  void showPlan();
  void showHistory();
  void showBar();
  Task<> lookAround();
  Task<> showLookFirst();
  Task<> clearTicked();
  Task<> restore(UUID act);
  Task<> restoreItem(UUID act, UUID item);
  Task<> empty();
  QString lastUsed(const CleanSelection::Item& folder) const;
  std::vector<std::int64_t> tickedBytes() const;

  CleanSelection::Choice choice_{.shown = CleanSelection::Titles()};  ///< of the rows on the screen
  AppModel::Scan shownScan_;
  RowModel* groups_;
  RowModel* folders_;
  RowModel* worthALook_;
  RowModel* heldBack_;
  RowModel* lookFirst_;
  RowModel* history_;
};

}  // namespace lumenary
