#include "headless/ContactSheet.h"

#include <QFontMetrics>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>
#include <utility>

namespace Qorvane {

namespace {

// An 8 px grid, as the application's own windows have. Cells are 4:3, the shape of most photographs.
constexpr int margin = 32;
constexpr int gap = 24;
constexpr int headingHeight = 72;
constexpr QSize pictureBox{240, 180};
constexpr int captionHeight = 44;
constexpr int cornerRadius = 6;
// Six cells of 240 px make a sheet of some 1,600 px, which a common screen shows whole.
constexpr int mostColumns = 6;

const QColor paper(0xfa, 0xfa, 0xfa);
const QColor mat(0xee, 0xee, 0xf0);
const QColor ink(0x1d, 0x1d, 0x1f);
const QColor faintInk(0x6e, 0x6e, 0x73);

QFont font(int pixelSize, QFont::Weight weight = QFont::Normal)
{
    QFont result;
    result.setPixelSize(pixelSize);
    result.setWeight(weight);
    return result;
}

void drawLine(QPainter &painter, const QRect &box, const QFont &textFont, const QColor &colour,
              const QString &text, Qt::TextElideMode elision)
{
    painter.setFont(textFont);
    painter.setPen(colour);
    const QString fitting = QFontMetrics(textFont).elidedText(text, elision, box.width());
    painter.drawText(box, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, fitting);
}

void drawPicture(QPainter &painter, const QRect &box, const QImage &picture)
{
    QPainterPath frame;
    frame.addRoundedRect(box, cornerRadius, cornerRadius);
    painter.fillPath(frame, mat);
    if (picture.isNull()) {
        painter.setFont(font(12));
        painter.setPen(faintInk);
        painter.drawText(box, Qt::AlignCenter, QStringLiteral("no picture"));
        return;
    }
    // Never enlarged: a small picture should look small.
    const QImage fitting = picture.width() > box.width() || picture.height() > box.height()
                               ? picture.scaled(box.size(), Qt::KeepAspectRatio, Qt::SmoothTransformation)
                               : picture;
    QRect place(QPoint(), fitting.size());
    place.moveCenter(box.center());
    painter.save();
    painter.setClipPath(frame);
    painter.drawImage(place.topLeft(), fitting);
    painter.restore();
}

} // namespace

ContactSheet::ContactSheet(QString heading, QString subheading)
    : m_heading(std::move(heading))
    , m_subheading(std::move(subheading))
{
}

int ContactSheet::columns() const
{
    // As square as possible while the sheet is small.
    const int square = int(std::ceil(std::sqrt(double(m_cells.size()))));
    return std::clamp(square, 1, mostColumns);
}

QSize ContactSheet::size() const
{
    // A sheet without pictures still has its heading, and one with a single picture room for it.
    const int across = std::max(columns(), 2);
    const int down = int((m_cells.size() + columns() - 1) / columns());
    return {2 * margin + across * pictureBox.width() + (across - 1) * gap,
            2 * margin + headingHeight + down * (pictureBox.height() + captionHeight) +
                std::max(down - 1, 0) * gap};
}

QImage ContactSheet::draw() const
{
    QImage sheet(size(), QImage::Format_RGB32);
    sheet.fill(paper);
    QPainter painter(&sheet);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing |
                           QPainter::SmoothPixmapTransform);

    const int textWidth = sheet.width() - 2 * margin;
    drawLine(painter, {margin, margin, textWidth, 32}, font(24, QFont::DemiBold), ink, m_heading,
             Qt::ElideRight);
    drawLine(painter, {margin, margin + 32, textWidth, 20}, font(13), faintInk, m_subheading, Qt::ElideRight);

    for (qsizetype index = 0; index < m_cells.size(); ++index) {
        const ContactSheetCell &cell = m_cells.at(index);
        const int column = int(index % columns());
        const int row = int(index / columns());
        const QPoint corner(margin + column * (pictureBox.width() + gap),
                            margin + headingHeight + row * (pictureBox.height() + captionHeight + gap));
        drawPicture(painter, {corner, pictureBox}, cell.picture);
        const int captionTop = corner.y() + pictureBox.height() + 6;
        drawLine(painter, {corner.x(), captionTop, pictureBox.width(), 18}, font(13), ink, cell.title,
                 Qt::ElideMiddle);
        drawLine(painter, {corner.x(), captionTop + 18, pictureBox.width(), 16}, font(12), faintInk,
                 cell.detail, Qt::ElideRight);
    }
    return sheet;
}

} // namespace Qorvane
