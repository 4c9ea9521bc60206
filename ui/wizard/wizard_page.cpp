#include "ui/wizard/wizard_page.h"

#include <QLabel>
#include <QPainter>

#include "ui/controls/make_child.h"
#include "ui/controls/qt_text.h"
#include "ui/look/current_look.h"
#include "ui/wizard/theme.h"
#include "ui/wizard/wizard_steps.h"

namespace dorvane {

void Card::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(CurrentLook().card_edge, 1));
  painter.setBrush(CurrentLook().card_ground);
  painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 7, 7);
}

WizardPage::WizardPage(std::int16_t index, QWidget* parent) : QWidget(parent) {
  setObjectName(QStringLiteral("fraStep%1").arg(index));
  const QString text = ToQString(PageCaption(index));
  setAccessibleName(text);
  FollowPalette(*this, &Look::page);
  setAutoFillBackground(true);

  content_ = &MakeChild<QVBoxLayout>(*this);
  content_->setContentsMargins(theme::kMargin, 16, theme::kMargin, 18);
  content_->setSpacing(theme::kGap);
  auto& label = MakeNamed<QLabel>("lblPageCaption", *this, text);
  label.setFont(theme::CaptionFont(font()));
  content_->addWidget(&label);
}

Card& WizardPage::AddCard() {
  Card& card = MakeChild<Card>(*this);
  content_->addWidget(&card);
  return card;
}

}  // namespace dorvane
