#pragma once

#include <QList>
#include <QStyledItemDelegate>
#include <QTextOption>

// Paints each item's text with tab stops of its own, so that columns a text
// separates by tabs line up from row to row whatever the font: a left stop
// starts a column of names, a right stop ends a column of numbers.
class TabStopDelegate : public QStyledItemDelegate {
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void setTabs(const QList<QTextOption::Tab>& tabs) { m_tabs = tabs; }
    const QList<QTextOption::Tab>& tabs() const { return m_tabs; }
    // How wide text is drawn with these stops in font.
    qreal textWidth(const QString& text, const QFont& font) const;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    QTextOption textOption() const;
    static int textMargin(const QStyleOptionViewItem& option);

    QList<QTextOption::Tab> m_tabs;
};
