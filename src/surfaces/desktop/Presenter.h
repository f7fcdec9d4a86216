#pragma once

#include <QQmlPropertyMap>
#include <QString>
#include <functional>
#include <vector>

#include "core/AppModel.h"

namespace lumenary {

/// What one room shows, as named values and lists; it changes nothing but through the model. A value that stays the
/// same isn't told of. Lives shorter than the model.
class Presenter : public QQmlPropertyMap {
  Q_OBJECT

 public:
  ~Presenter() override;

  /// The room comes on the screen, or leaves it: what nobody sees isn't refreshed.
  Q_INVOKABLE void enter();
  Q_INVOKABLE void leave() { isEntered_ = false; }

 protected:
  template <class Derived>
  Presenter(Derived* derived, AppModel& model) : QQmlPropertyMap(derived, nullptr), model_(model) {}

  AppModel& model() { return model_; }
  const AppModel& model() const { return model_; }

  /// Shows the room anew after the field has changed: once for all changes of one turn of the loop.
  template <class Value>
  void follow(AppModel::Field<Value>& field) {
    onChange(field, [this] { refreshSoon(); });
  }
  template <class Value>
  void onChange(AppModel::Field<Value>& field, std::function<void()> call) {
    const auto observer = field.observe(std::move(call));
    endings_.push_back([&field, observer] { field.stopObserving(observer); });
  }
  void refreshSoon();
  virtual void refresh() = 0;
  /// What only a look at the room asks for.
  virtual void prepare() {}

  void show(const char* name, const QVariant& value) {
    if (this->value(QString::fromLatin1(name)) != value) {
      insert(QString::fromLatin1(name), value);
    }
  }
  void showList(const char* name, QObject* list) { insert(QString::fromLatin1(name), QVariant::fromValue(list)); }

  /// Runs a flow that ends with the room.
  void run(Task<> task) { tasks_.spawn(std::move(task)); }

 private:
  AppModel& model_;
  bool isEntered_ = false;
  bool isRefreshing_ = false;
  std::vector<std::function<void()>> endings_;
  TaskScope tasks_;
};

}  // namespace lumenary
