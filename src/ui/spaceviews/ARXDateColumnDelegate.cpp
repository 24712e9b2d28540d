#include "ui/spaceviews/ARXDateColumnDelegate.h"

#include "ui/spaceviews/ARXDateText.h"
#include "ui/spaceviews/ARXSpaceListModel.h"

#include <QApplication>
#include <QStyle>

#include <optional>

void ARXDateColumnDelegate::initStyleOption(QStyleOptionViewItem* option,
                                            const QModelIndex& index) const {
    QStyledItemDelegate::initStyleOption(option, index);
    const auto* model = qobject_cast<const ARXSpaceListModel*>(index.model());
    if (!model) {
        return;
    }
    const QVariant date = index.data(ARXSpaceListModel::DateRole);
    const std::optional<double> seconds =
        date.isValid() ? std::optional<double>(date.toDouble()) : std::nullopt;
    // The text gets the cell less the margins the style puts on either side of it.
    const QStyle* style = option->widget ? option->widget->style() : QApplication::style();
    const int margin =
        style->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, option->widget) + 1;
    const int width = option->rect.width() - 2 * margin;
    const QFontMetrics metrics = option->fontMetrics;
    option->text = model->dateText().fitting(seconds, width, [&metrics](const QString& text) {
        return metrics.horizontalAdvance(text);
    });
}
