#include "views/ContentViewFixture.h"

#include <QAccessible>

using namespace Qorvane;

namespace {

/// The buttons over the columns: what they show and how they are called.
class ContentToolbarTest : public ContentViewFixture
{
protected:
    static QString nameOf(QQuickItem *button)
    {
        return QAccessible::queryAccessibleInterface(button)->text(QAccessible::Name);
    }
};

} // namespace

TEST_F(ContentToolbarTest, eachButtonShowsItsIconAndHasItsName)
{
    const QString folder = addFolder(QStringLiteral("Photos"), 1);
    state.selection().setUrls({FileUrl::file(fileUrl(folder, 0))});
    state.setDetailViewActive(true);
    ASSERT_TRUE(waitUntil([this] { return item("fullPicture")->isVisible(); }));
    for (const auto &[button, icon, name] :
         {std::tuple("backButton", "chevron.left", "Back"),
          std::tuple("sortButton", "arrow.up.arrow.down.circle", "Sort"),
          std::tuple("inspectorButton", "sidebar.right", "Hide Info Panel"),
          std::tuple("addFolderButton", "folder.badge.plus", "Add Folder")}) {
        ASSERT_TRUE(item(button) && item(button)->isVisible()) << button;
        EXPECT_EQ(iconsOf(item(button)), QStringList{icon}) << button;
        EXPECT_EQ(item(button)->property("text").toString(), QLatin1String(name));
        EXPECT_EQ(nameOf(item(button)), QLatin1String(name));
    }
}
