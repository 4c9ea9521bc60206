#pragma once

#include <QListView>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace dorvane {

class NameListModel;

/// A list of names in the order in which they were added, one of them current (and selected). Stays
/// quick with tens of thousands of names: nothing is laid out beyond the visible rows.
class NameListView : public QListView {
  Q_OBJECT

 public:
  explicit NameListView(QWidget* parent = nullptr);

  const std::vector<std::string>& Names() const;
  /// What stands at the right of an entry, by its name.
  void SetDetails(std::unordered_map<std::string, QString> details);
  /// Replaces all names; `current` is the position of the current one, -1 for none.
  void SetNames(std::vector<std::string> names, int current);
  /// The position of the selected entry, or -1.
  int Current() const;
  void SetCurrent(int position);
  void Append(std::string name);
  /// Removes the first entry that equals `name` exactly, if there is one.
  void RemoveFirst(std::string_view name);

 protected:
  /// Shows a name that is not seen whole as a tooltip.
  bool viewportEvent(QEvent* event) override;

 private:
  NameListModel* model_;
};

}  // namespace dorvane
