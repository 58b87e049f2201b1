#include "desktop/scenes/FormSectionView.h"

#include <algorithm>
#include <utility>

#include <QPainter>
#include <QVBoxLayout>

#include "desktop/scenes/FormRowView.h"
#include "desktop/scenes/FormStyle.h"

namespace valdrix::desktop {

namespace {

constexpr int textGap = 6;

void showIfAny(TextLabel& label, const std::string& text) {
  label.setUtf8(text);
  label.setVisible(!text.empty());
}

}  // namespace

RowGroup::RowGroup(QWidget* parent) : QWidget(parent) {}

void RowGroup::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  const QPalette& colors = palette();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(formStyle::hairline(colors), 1));
  painter.setBrush(formStyle::groupFill(colors));
  painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), formStyle::groupRadius,
                          formStyle::groupRadius);
  painter.setRenderHint(QPainter::Antialiasing, false);
  for (int i = 1; i < layout()->count(); ++i) {
    const QRectF row = layout()->itemAt(i)->geometry();
    formStyle::paintHairline(painter, colors,
                             row.adjusted(formStyle::groupInset, 0, -formStyle::groupInset, 0));
  }
}

FormSectionView::FormSectionView(FormContext context, QWidget* parent)
    : QWidget(parent),
      context_(std::move(context)),
      header_(
          {.fontFactor = formStyle::calloutFactor, .weight = QFont::DemiBold, .isWrapped = true}),
      footer_({.fontFactor = formStyle::smallFactor,
               .prominence = view::Prominence::secondary,
               .isWrapped = true}),
      link_(context_.didEdit),
      lines_(new QVBoxLayout(&group_)) {
  if (context_.hasSelectableTexts) footer_.makeSelectable();
  lines_->setContentsMargins(0, 0, 0, 0);
  lines_->setSpacing(0);
  auto* const parts = new QVBoxLayout(this);
  parts->setContentsMargins(0, 0, 0, 0);
  parts->setSpacing(textGap);
  parts->addWidget(&header_);
  parts->addWidget(&group_);
  parts->addWidget(&footer_);
  auto* const linkLine = new QHBoxLayout;
  linkLine->setContentsMargins(formStyle::groupInset - LinkButton::ringGap, 0, 0, 0);
  linkLine->addWidget(&link_);
  linkLine->addStretch(1);
  parts->addLayout(linkLine);
  // In line with the rows' titles.
  for (auto* const text : {&header_, &footer_})
    text->setContentsMargins(formStyle::groupInset, 0, formStyle::groupInset, 0);
}

FormSectionView::Row FormSectionView::takeOrMake(std::vector<Row>& old, const view::FormRow& row,
                                                 std::string key) {
  const std::size_t kind = row.content.index();
  const auto known = std::ranges::find_if(
      old, [&](const Row& candidate) { return candidate.key == key && candidate.kind == kind; });
  if (known == old.end()) return {std::move(key), kind, FormRowView::make(row, context_).release()};
  Row taken = *known;
  old.erase(known);
  return taken;
}

bool FormSectionView::show(const view::FormSection& section) {
  showIfAny(header_, section.header);
  showIfAny(footer_, section.footer);
  link_.setVisible(section.link.has_value());
  if (section.link) link_.show(*section.link);
  group_.setAccessibleName(header_.text());
  group_.setVisible(!section.rows.empty());

  std::vector<Row> old = std::exchange(rows_, {});
  const std::vector<Row> before = old;
  for (const auto& row : section.rows) {
    // A place is no identifier that a description could have.
    auto key = row.id.empty() ? '\0' + std::to_string(rows_.size()) : row.id;
    rows_.push_back(takeOrMake(old, row, std::move(key)));
    rows_.back().view->show(row);
  }
  for (const Row& gone : old) delete gone.view;
  if (rows_ == before) return false;
  arrange();
  return true;
}

void FormSectionView::arrange() {
  while (lines_->count() > 0) delete lines_->takeAt(0);
  for (const Row& row : rows_) lines_->addWidget(row.view);
  // A layout would show them a turn later. Not before all are there: to show one lays the form out,
  // and what it is too short for scrolls back.
  for (const Row& row : rows_) row.view->setVisible(true);
  group_.update();
}

std::vector<QWidget*> FormSectionView::controls() const {
  std::vector<QWidget*> controls;
  for (const Row& row : rows_)
    if (auto* const control = row.view->control()) controls.push_back(control);
  const bool isFooterSelectable = footer_.isSelectable() && !footer_.isHidden();
  if (isFooterSelectable) controls.push_back(const_cast<TextLabel*>(&footer_));
  if (!link_.isHidden()) controls.push_back(const_cast<LinkButton*>(&link_));
  return controls;
}

}  // namespace valdrix::desktop
