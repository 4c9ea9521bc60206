#pragma once

#include <QWidget>
#include <cstdint>
#include <filesystem>
#include <memory>

#include "platform/help/help_book.h"

class QLineEdit;
class QListWidget;
class QTabWidget;
class QTreeWidget;
class QUrl;

namespace dorvane {

class HelpBrowser;

/// The window of a help file: contents, index and search on the left, the topic on the right. A
/// file that is missing or damaged is reported in the window. Esc closes it.
class HelpWindow : public QWidget {
  Q_OBJECT

 public:
  explicit HelpWindow(const std::filesystem::path& help_file, QWidget* parent = nullptr);
  ~HelpWindow() override;

  void ShowContents();
  void ShowIndex();
  void ShowSearch();
  void ShowDefaultTopic();
  /// The topic of a context number; says so when there is none.
  void ShowContext(std::int32_t context);

 private:
  void Build();
  QWidget& BuildContents();
  QWidget& BuildIndex();
  QWidget& BuildSearch();
  void ShowTab(QWidget& tab);
  /// Marks the entry of the contents that the shown topic stands under.
  void FollowTopic(const QUrl& shown);
  void FilterIndex(const QString& text);
  void Search();

  std::unique_ptr<help::HelpBook> book_;  // null when it could not be opened
  HelpBrowser* browser_ = nullptr;
  QTabWidget* tabs_ = nullptr;
  QTreeWidget* contents_ = nullptr;
  QWidget* index_tab_ = nullptr;
  QLineEdit* index_filter_ = nullptr;
  QListWidget* index_ = nullptr;
  QWidget* search_tab_ = nullptr;
  QLineEdit* query_ = nullptr;
  QListWidget* hits_ = nullptr;
};

}  // namespace dorvane
