#pragma once

#include "encoders/Problem.h"
#include "encoders/layout/PublishedVocabulary.h"

#include <QLockFile>
#include <QStringList>
#include <QTemporaryDir>

#include <functional>
#include <memory>

namespace Qorvane::Encoders {

/// The names under which the application looks for a family's files.
struct FamilyFiles
{
    QString vision;
    QString text;
    QString vocabulary;
    QString licence; ///< not looked at by the application

    /// All of them, and where weights that don't fit into a graph's file lie.
    QStringList all() const;

    static FamilyFiles of(Family family);
};

/// Puts a family's files into a folder as one: at any moment, also when the program is killed, there is
/// either the whole old set or the whole new one. Other files in the folder stay.
///
/// The new set is made in a folder beside, into which all other files of the old folder are linked; then the
/// two folders change places, which the system does in one step. Where that can't be (the folder has folders
/// in it, or the file system can't), the files are renamed one by one, and `isWhole` says
/// so: then a kill in the middle may leave a mixture.
class EncoderInstall
{
public:
    /// For a folder that need not be there. It is made, and another import into it is waited for. What an
    /// earlier one left behind when it was killed is removed.
    static Outcome<EncoderInstall> begin(const QString &destination);

    /// Where the new files are to be put before `commit`.
    QString staging() const { return m_staging->path(); }

    /// Puts `names`, which lie in `staging`, in place of all files of `family`. True when it went in one
    /// step. `onStep` is called between the steps, for tests.
    Outcome<bool> commit(Family family, const QStringList &names, const std::function<void()> &onStep = {});

private:
    EncoderInstall() = default;

    bool linkOthers(const QStringList &replaced) const;
    Outcome<bool> renameOneByOne(const QStringList &names, const QStringList &replaced,
                                 const std::function<void()> &onStep) const;

    QString m_destination;
    std::unique_ptr<QLockFile> m_lock;
    std::unique_ptr<QTemporaryDir> m_staging;
};

} // namespace Qorvane::Encoders
