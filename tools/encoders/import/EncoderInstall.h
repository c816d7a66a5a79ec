#pragma once

#include "encoders/Problem.h"
#include "encoders/layout/PublishedVocabulary.h"

#include <QLockFile>
#include <QStringList>
#include <QTemporaryDir>

#include <functional>
#include <memory>
#include <optional>
#include <utility>

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
/// two folders change places, which the system does in one step. Where that can't be, the files are renamed
/// one by one, and `commit` says so: one that fails has the old set put back, but a kill in the middle leaves
/// a mixture until the next `begin` puts the old files back. So it is where the folder has folders in it,
/// where it is a mount point, and where nothing may be put beside it: then the new set is made in a hidden
/// folder inside of it.
class EncoderInstall
{
public:
    /// Where the new set is made.
    enum class Place { beside, inside };

    /// Which of them suits this folder, which must be there.
    static Place placeFor(const QString &folder);

    /// For a folder that need not be there. It is made, and removed again when nothing comes into it; another
    /// import into it is waited for. What an earlier one took away without coming to its end is put back,
    /// which must succeed, and what else it left behind is removed. `place` is for tests.
    static Outcome<EncoderInstall> begin(const QString &destination, std::optional<Place> place = {});

    /// Where the new files are to be put before `commit`.
    QString staging() const { return m_staging->path(); }

    /// Puts `names`, which lie in `staging`, in place of all files of `family`. True when it went in one
    /// step. `onStep` is called between the steps, for tests.
    Outcome<bool> commit(Family family, const QStringList &names, const std::function<void()> &onStep = {});

private:
    /// A folder that goes away again unless it is used.
    class MadeFolder
    {
    public:
        explicit MadeFolder(QString path)
            : m_path(std::move(path))
        {
        }
        ~MadeFolder();
        MadeFolder(const MadeFolder &) = delete;
        MadeFolder &operator=(const MadeFolder &) = delete;

    private:
        const QString m_path;
    };

    EncoderInstall() = default;

    bool putBack(const QStringList &replaced, const QStringList &placed) const;
    bool linkOthers(const QStringList &replaced) const;
    Outcome<bool> renameOneByOne(const QStringList &names, const QStringList &replaced,
                                 const std::function<void()> &onStep) const;

    QString m_destination;
    Place m_place = Place::beside;
    // In this order: the lock and the new set may lie in the folder.
    std::unique_ptr<MadeFolder> m_made;
    std::unique_ptr<QLockFile> m_lock;
    std::unique_ptr<QTemporaryDir> m_staging;
};

} // namespace Qorvane::Encoders
