#pragma once

#include "encoders/starter/Download.h"

namespace Qorvane::Encoders {

/// One version of an npm package, or the beginning of it when that holds all that is wanted.
struct NpmPackage
{
    QString name;
    QString version;
    DownloadPin archive;
    /// As the package states it. The archive's own licence file goes with it, when it has one.
    QString licence;

    QString title() const { return name + u'@' + version; }
};

/// Downloaded packages in a folder that several source trees share.
class NpmCache
{
public:
    /// Asks where a package's archive is: its address, from the title ("name@version").
    using Locate = std::function<Outcome<QUrl>(const QString &title)>;

    /// `folder` is made when something is fetched.
    explicit NpmCache(QString folder, Locate locate = askNpm);

    /// ${QORVANE_DOWNLOAD_CACHE:-${XDG_CACHE_HOME:-~/.cache}/qorvane-build}.
    static QString defaultFolder();

    /// What `npm view` says. The registry is npm's own setting, so that mirrors work.
    static Outcome<QUrl> askNpm(const QString &title);

    /// The path of the package's verified archive, downloaded when it isn't there yet.
    Outcome<QString> fetch(const NpmPackage &package, const ProgressReport &progress) const;

private:
    QString m_folder;
    Locate m_locate;
};

} // namespace Qorvane::Encoders
