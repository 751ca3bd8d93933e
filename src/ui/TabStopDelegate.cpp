#include "TabStopDelegate.h"

#include <QApplication>
#include <QPainter>
#include <QTextLayout>
#include <cmath>

QTextOption TabStopDelegate::textOption() const {
    QTextOption option(Qt::AlignLeft | Qt::AlignVCenter);
    option.setWrapMode(QTextOption::NoWrap);
    option.setTabs(m_tabs);
    return option;
}

int TabStopDelegate::textMargin(const QStyleOptionViewItem& option) {
    const QStyle* style = option.widget ? option.widget->style() : QApplication::style();
    return style->pixelMetric(QStyle::PM_FocusFrameHMargin, &option, option.widget) + 1;
}

qreal TabStopDelegate::textWidth(const QString& text, const QFont& font) const {
    QTextLayout layout(text, font);
    layout.setTextOption(textOption());
    layout.beginLayout();
    QTextLine line = layout.createLine();
    layout.endLayout();
    return line.isValid() ? line.naturalTextWidth() : 0;
}

void TabStopDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                            const QModelIndex& index) const {
    QStyleOptionViewItem item = option;
    initStyleOption(&item, index);
    const QString text = item.text;
    // The style paints the background, the selection and the focus; the text is ours.
    item.text.clear();
    const QStyle* style = item.widget ? item.widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &item, painter, item.widget);
    const int margin = textMargin(item);
    painter->save();
    painter->setFont(item.font);
    painter->setPen(item.palette.color(
        item.state & QStyle::State_Selected ? QPalette::HighlightedText : QPalette::Text));
    painter->drawText(QRectF(item.rect.adjusted(margin, 0, -margin, 0)), text, textOption());
    painter->restore();
}

QSize TabStopDelegate::sizeHint(const QStyleOptionViewItem& option,
                                const QModelIndex& index) const {
    QStyleOptionViewItem item = option;
    initStyleOption(&item, index);
    const QSize base = QStyledItemDelegate::sizeHint(option, index);
    const int width = int(std::ceil(textWidth(item.text, item.font))) + 2 * textMargin(item);
    return {std::max(base.width(), width), base.height()};
}
