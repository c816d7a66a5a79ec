#include "encoders/compare/LabelledSet.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QStringDecoder>

#include <algorithm>

namespace Qorvane::Encoders {

namespace {

const QString remedy =
    QStringLiteral("correct that line; the first line names the columns, tabs separate them");

tl::unexpected<Problem> lineProblem(int line, const QString &expected, const QString &found)
{
    return problem(expected, QStringLiteral("in line %1 %2").arg(line).arg(found), remedy);
}

// Columns of the table; -1 for one that isn't there.
struct Columns
{
    qsizetype count = 0;
    qsizetype path = -1;
    qsizetype set = -1;
    qsizetype labels = -1;
    qsizetype captions = -1;
};

Columns columnsOf(const QStringList &header, Language language)
{
    const QString suffix = language == Language::chinese ? QStringLiteral("zh") : QStringLiteral("en");
    return {.count = header.size(),
            .path = header.indexOf(QStringLiteral("path")),
            .set = header.indexOf(QStringLiteral("set")),
            .labels = header.indexOf(QStringLiteral("labels_") + suffix),
            .captions = header.indexOf(QStringLiteral("captions_") + suffix)};
}

QStringList textsOf(const QStringList &cells, qsizetype column, const QString &separator)
{
    QStringList texts;
    if (column < 0)
        return texts;
    for (const QString &part : cells[column].split(separator)) {
        const QString text = part.trimmed();
        if (!text.isEmpty())
            texts.append(text);
    }
    return texts;
}

Outcome<LabelledPicture> rowOf(const QStringList &cells, const Columns &columns, int line)
{
    if (cells.size() != columns.count) {
        return lineProblem(line, QStringLiteral("%1 cells, as in the first line").arg(columns.count),
                           QStringLiteral("%1").arg(cells.size()));
    }
    LabelledPicture row;
    row.line = line;
    row.path = cells[columns.path].trimmed();
    if (row.path.isEmpty())
        return lineProblem(line, QStringLiteral("a path"), QStringLiteral("none"));
    if (columns.set >= 0)
        row.set = cells[columns.set].trimmed();
    row.labels = textsOf(cells, columns.labels, QStringLiteral(","));
    row.labels.removeDuplicates();
    row.captions = textsOf(cells, columns.captions, QStringLiteral("|"));
    return row;
}

Outcome<QString> decoded(const QByteArray &bytes, int line)
{
    QStringDecoder decoder(QStringDecoder::Utf8);
    QString text = decoder(bytes);
    if (decoder.hasError())
        return lineProblem(line, QStringLiteral("text in UTF-8"), QStringLiteral("other bytes"));
    if (text.endsWith(u'\r'))
        text.chop(1);
    return text;
}

} // namespace

Outcome<std::vector<LabelledPicture>> readLabelledSet(const QByteArray &table, Language language)
{
    std::vector<LabelledPicture> rows;
    QHash<QString, int> lineOfPath;
    Columns columns;
    int line = 0;
    for (const QByteArray &bytes : table.split('\n')) {
        ++line;
        const Outcome<QString> text = decoded(bytes, line);
        if (!text)
            return tl::unexpected(text.error());
        if (text->trimmed().isEmpty())
            continue;
        const QStringList cells = text->split(u'\t');
        if (columns.count == 0) {
            columns = columnsOf(cells, language);
            if (columns.path < 0)
                return lineProblem(line, QStringLiteral("a column \"path\""),
                                   QStringLiteral("\"%1\"").arg(*text));
            continue;
        }
        Outcome<LabelledPicture> row = rowOf(cells, columns, line);
        if (!row)
            return tl::unexpected(row.error());
        if (const auto before = lineOfPath.constFind(row->path); before != lineOfPath.constEnd()) {
            return lineProblem(line, QStringLiteral("each picture once"),
                               QStringLiteral("%1, which line %2 has").arg(row->path).arg(*before));
        }
        lineOfPath.insert(row->path, line);
        rows.push_back(*std::move(row));
    }
    if (columns.count == 0)
        return problem(QStringLiteral("a table"), QStringLiteral("nothing"), remedy);
    return rows;
}

QString labelledFile(const QString &folder, const QString &path)
{
    const QString below = QDir::cleanPath(folder) + u'/';
    const auto fileAt = [&below](const QString &candidate) {
        const QString clean = QDir::cleanPath(candidate);
        return clean.startsWith(below) && QFileInfo(clean).isFile() ? clean : QString();
    };
    if (QDir::isAbsolutePath(path))
        return fileAt(path);
    for (QDir base(folder);; base.setPath(QDir::cleanPath(base.path() + QStringLiteral("/..")))) {
        if (const QString file = fileAt(base.path() + u'/' + path); !file.isEmpty())
            return file;
        if (base.isRoot())
            break;
    }
    for (qsizetype slash = path.indexOf(u'/'); slash >= 0; slash = path.indexOf(u'/', slash + 1)) {
        if (const QString file = fileAt(below + path.mid(slash + 1)); !file.isEmpty())
            return file;
    }
    return {};
}

} // namespace Qorvane::Encoders
