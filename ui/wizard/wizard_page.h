#pragma once

#include <QVBoxLayout>
#include <QWidget>
#include <cstdint>

namespace dorvane {

/// A rounded panel of a page that holds what belongs together.
class Card : public QWidget {
 public:
  explicit Card(QWidget* parent) : QWidget(parent) {}

 protected:
  void paintEvent(QPaintEvent* event) override;
};

/// One page of the wizard, "fraStep" + index: a caption and, below it, the page's own content.
class WizardPage : public QWidget {
 public:
  WizardPage(std::int16_t index, QWidget* parent);

 protected:
  QVBoxLayout& Content() { return *content_; }
  /// A new card at the end of the content.
  Card& AddCard();

 private:
  QVBoxLayout* content_;
};

}  // namespace dorvane
