#include "views/style/IconProvider.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

#include <gtest/gtest.h>

using namespace Qorvane;

namespace {

QImage icon(int logicalSize, int scale)
{
    QSize size;
    return IconProvider().requestImage(QStringLiteral("folder/ff000000/%1").arg(logicalSize), &size,
                                       QSize(logicalSize, logicalSize) * scale);
}

// Of the whole image, the part that is covered with ink.
double coverage(const QImage &image)
{
    double sum = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            sum += qAlpha(image.pixel(x, y)) / 255.0;
    }
    return sum / (double(image.width()) * image.height());
}

} // namespace

TEST(IconProvider, drawsTheSameOnAScreenOfTwiceTheDensity)
{
    for (const int size : {14, 18, 26, 36, 48, 56}) {
        const QImage plain = icon(size, 1);
        const QImage dense = icon(size, 2);
        ASSERT_EQ(dense.size(), QSize(2 * size, 2 * size));
        ASSERT_GT(coverage(plain), 0.02);
        EXPECT_NEAR(coverage(dense) / coverage(plain), 1, 0.03) << size;
    }
}

TEST(IconProvider, drawsALargeIconWithAFinerLine)
{
    EXPECT_LT(coverage(icon(48, 1)), 0.75 * coverage(icon(18, 1)));
}

// The finer line of a large icon is the same line with another width.
TEST(IconProvider, allIconsAreDrawnWithTheOneLineThatItThins)
{
    const QStringList names = QDir(QStringLiteral(":/icons")).entryList();
    ASSERT_GT(names.size(), 10);
    const QRegularExpression element(QStringLiteral("<\\w+[^>]*>"));
    const QRegularExpression width(QStringLiteral("stroke-width=\"([^\"]*)\""));
    for (const QString &name : names) {
        QFile file(QStringLiteral(":/icons/") + name);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        int lines = 0;
        for (auto part = element.globalMatch(QString::fromUtf8(file.readAll())); part.hasNext();) {
            const QString text = part.next().captured();
            const QString found = width.match(text).captured(1);
            // What is filled has its outline for its corners only.
            if (found.isEmpty() || text.contains(QStringLiteral("fill=\"currentColor\"")))
                continue;
            EXPECT_EQ(found, QStringLiteral("1.6")) << qPrintable(name);
            ++lines;
        }
        EXPECT_EQ(lines, 1) << qPrintable(name);
    }
}

TEST(IconProvider, givesNothingForWhatIsNoIcon)
{
    QSize size;
    for (const char *id : {"folder", "folder/ff000000", "nosuchicon/ff000000/18", "folder/nocolour/18"})
        EXPECT_TRUE(IconProvider().requestImage(QString::fromLatin1(id), &size, QSize(18, 18)).isNull())
            << id;
}
