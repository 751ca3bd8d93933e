#include "MediaThumbDelegate.h"

#include "MediaFolderModel.h"

#include <QApplication>
#include <QPainter>
#include <QPainterPath>

namespace {
constexpr int Margin = 4;

struct SoundKind {
    int number;
    const char* label;
    QRgb colour;
};
// The sound browser's icon numbers, each kind with its own colour.
constexpr SoundKind SoundKinds[] = {
    {101, "WAV", 0x2a6fdb},    {102, "IMY", 0x1b998b},     {103, "MIDI", 0x3c9d3c},
    {104, "MH IMY", 0x7b4fc4}, {105, "MH MIDI", 0xd9822b}, {106, "MP3", 0xc8423b},
    {107, "AMR", 0x8a6642},
};

const SoundKind& soundKind(int number) {
    for (const SoundKind& kind : SoundKinds)
        if (kind.number == number)
            return kind;
    static const SoundKind other{0, "", 0x707070};
    return other;
}
} // namespace

MediaThumbDelegate::MediaThumbDelegate(QObject* parent) : QStyledItemDelegate(parent) {}

QSize MediaThumbDelegate::sizeHint(const QStyleOptionViewItem& option,
                                   const QModelIndex& index) const {
    Q_UNUSED(index);
    const int line = option.fontMetrics.height();
    // Room for a name of about fifteen characters under a small thumbnail.
    const int width = std::max(m_thumb.width(), option.fontMetrics.averageCharWidth() * 15);
    return QSize(width + 2 * Margin, m_thumb.height() + 2 * line + 3 * Margin);
}

QPixmap MediaThumbDelegate::soundIcon(int number, int edge) {
    const SoundKind& kind = soundKind(number);
    QPixmap icon(edge, edge);
    icon.fill(Qt::transparent);
    QPainter painter(&icon);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(kind.colour));
    painter.drawRoundedRect(QRectF(0, 0, edge, edge), edge / 6.0, edge / 6.0);
    painter.setPen(Qt::white);
    QFont font = QApplication::font();
    font.setPixelSize(edge / 2);
    painter.setFont(font);
    painter.drawText(QRect(0, 0, edge, edge * 2 / 3), Qt::AlignCenter, QString(QChar(0x266B)));
    font.setPixelSize(std::max(7, edge / 6));
    font.setBold(true);
    painter.setFont(font);
    painter.drawText(QRect(0, edge * 3 / 5, edge, edge * 2 / 5), Qt::AlignCenter,
                     QLatin1String(kind.label));
    return icon;
}

void MediaThumbDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                               const QModelIndex& index) const {
    QStyleOptionViewItem plain = option;
    initStyleOption(&plain, index);
    plain.text.clear();
    plain.icon = QIcon();
    // The whole cell shows the selection: the name drawn in its colour below
    // is read on it, not on the list's own background.
    plain.showDecorationSelected = true;
    QApplication::style()->drawControl(QStyle::CE_ItemViewItem, &plain, painter, plain.widget);

    const QRect cell = option.rect.adjusted(Margin, Margin, -Margin, -Margin);
    QRect frame(QPoint(), m_thumb);
    frame.moveCenter(QPoint(cell.center().x(), cell.top() + m_thumb.height() / 2));
    painter->save();
    paintPicture(painter, frame, index);
    const bool selected = option.state & QStyle::State_Selected;
    const QPalette::ColorRole role = selected ? QPalette::HighlightedText : QPalette::Text;
    const int line = option.fontMetrics.height();
    QRect text(cell.left(), frame.bottom() + Margin, cell.width(), line);
    painter->setPen(option.palette.color(role));
    painter->drawText(
        text, Qt::AlignHCenter,
        option.fontMetrics.elidedText(index.data().toString(), Qt::ElideMiddle, text.width()));
    text.translate(0, line);
    const QString detail = index.data(MediaFolderModel::DetailRole).toString();
    painter->setPen(option.palette.color(selected ? role : QPalette::PlaceholderText));
    painter->drawText(text, Qt::AlignHCenter,
                      option.fontMetrics.elidedText(detail, Qt::ElideRight, text.width()));
    painter->restore();
}

void MediaThumbDelegate::paintPicture(QPainter* painter, const QRect& frame,
                                      const QModelIndex& index) const {
    const QPixmap picture = index.data(Qt::DecorationRole).value<QPixmap>();
    const int iconNumber = index.data(MediaFolderModel::IconNumberRole).toInt();
    if (!index.data(MediaFolderModel::ErrorRole).toString().isEmpty())
        return paintMark(painter, frame, QStringLiteral("!"), QColor(0xc0392b));
    if (iconNumber > 0 && picture.isNull()) {
        const int edge = std::min(frame.width(), frame.height());
        const QRect square(frame.center() - QPoint(edge / 2, edge / 2), QSize(edge, edge));
        painter->drawPixmap(square, soundIcon(iconNumber, edge));
        return;
    }
    if (picture.isNull())
        return paintMark(painter, frame, QString(QChar(0x2026)), QColor(0x9e9e9e));
    QRect target = frame;
    if (m_stretch == KeepRatio) {
        // A small symbol keeps its own pixels; only a larger one is scaled down.
        QSize size = picture.size();
        if (size.width() > frame.width() || size.height() > frame.height())
            size.scale(frame.size(), Qt::KeepAspectRatio);
        target = QRect(QPoint(), size);
        target.moveCenter(frame.center());
    }
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    painter->drawPixmap(target, picture);
}

// A file still being read, or one that cannot be used: a sign in a frame.
void MediaThumbDelegate::paintMark(QPainter* painter, const QRect& frame, const QString& mark,
                                   const QColor& colour) {
    painter->setPen(QPen(colour, 1, Qt::DashLine));
    painter->setBrush(Qt::NoBrush);
    painter->drawRect(frame.adjusted(0, 0, -1, -1));
    QFont font = painter->font();
    font.setPixelSize(frame.height() / 2);
    font.setBold(true);
    painter->setFont(font);
    painter->setPen(colour);
    painter->drawText(frame, Qt::AlignCenter, mark);
}
