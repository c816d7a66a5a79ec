#pragma once

#include <QByteArray>
#include <QImage>
#include <QList>
#include <QtEndian>

#include <utility>

namespace Qorvane {

/// A PSD to be written, section by section.
struct PsdFile
{
    bool isLarge = false;
    QSize size;
    int bitsPerSample = 8;
    int mode = 3;
    QByteArray palette;
    QList<std::pair<int, QByteArray>> resources; ///< by their numbers
    QByteArray layers;                           ///< the whole section without its length
    bool isPacked = false;
    int compression = -1; ///< to be claimed instead of the true one
    /// A plane of samples per channel, each of `bitsPerSample` bits, its rows padded to whole bytes.
    QList<QByteArray> channels;

    QByteArray bytes() const
    {
        QByteArray result("8BPS");
        append<quint16>(result, isLarge ? 2 : 1);
        result.append(QByteArray(6, '\0'));
        append<quint16>(result, channels.size());
        append<quint32>(result, size.height());
        append<quint32>(result, size.width());
        append<quint16>(result, bitsPerSample);
        append<quint16>(result, mode);
        append<quint32>(result, palette.size());
        result.append(palette);
        const QByteArray block = resourceBlock();
        append<quint32>(result, block.size());
        result.append(block);
        if (isLarge)
            append<quint64>(result, layers.size());
        else
            append<quint32>(result, layers.size());
        result.append(layers);
        append<quint16>(result, compression >= 0 ? compression : isPacked);
        return result + (isPacked ? packedChannels() : channels.join());
    }

    template <typename Number>
    static void append(QByteArray &bytes, qint64 number)
    {
        const Number big = qToBigEndian(Number(number));
        bytes.append(reinterpret_cast<const char *>(&big), sizeof big);
    }

    /// A plane of 8 bits with what `sample` makes of each pixel.
    static QByteArray plane(const QImage &picture, int (*sample)(QRgb))
    {
        QByteArray result;
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x)
                result.append(char(sample(picture.pixel(x, y))));
        }
        return result;
    }
    static QList<QByteArray> rgbPlanes(const QImage &picture)
    {
        return {plane(picture, qRed), plane(picture, qGreen), plane(picture, qBlue)};
    }

private:
    QByteArray resourceBlock() const
    {
        QByteArray block;
        for (const auto &[number, content] : resources) {
            block.append("8BIM");
            append<quint16>(block, number);
            block.append("\5title", 6);
            append<quint32>(block, content.size());
            block.append(content);
            if (content.size() % 2 != 0)
                block.append('\0');
        }
        return block;
    }

    /// Each row as runs of at most 100 equal bytes, or single ones.
    static QByteArray packed(const QByteArray &row)
    {
        QByteArray result;
        for (qsizetype i = 0; i < row.size();) {
            qsizetype run = 1;
            while (run < 100 && i + run < row.size() && row[i + run] == row[i])
                ++run;
            result.append(char(1 - run)).append(row[i]);
            i += run;
        }
        return result;
    }
    QByteArray packedChannels() const
    {
        QByteArray counts;
        QByteArray data;
        const int rowSize = (size.width() * bitsPerSample + 7) / 8;
        for (const QByteArray &channel : channels) {
            for (int y = 0; y < size.height(); ++y) {
                const QByteArray row = packed(channel.mid(y * rowSize, rowSize));
                if (isLarge)
                    append<quint32>(counts, row.size());
                else
                    append<quint16>(counts, row.size());
                data.append(row);
            }
        }
        return counts + data;
    }
};

} // namespace Qorvane
