#pragma once

#include <QStyledItemDelegate>

// Paints a date cell of the list view with the longest date text that fits the cell's width at
// the moment of painting, so that a column made narrower shows a shorter date instead of an
// elided one. The date comes from the model's DateRole and the texts from the model's
// ARXDateText; everything else (selection, the dimmed colour of hidden items, which the model
// gives as its foreground) is Qt's ordinary painting.
class ARXDateColumnDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;
};
