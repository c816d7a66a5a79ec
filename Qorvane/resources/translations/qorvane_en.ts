<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="en">
<context>
    <name>Qorvane</name>
    <message>
        <source>检查更新...</source>
        <translation>Check for Updates…</translation>
    </message>
    <message>
        <source>帮助</source>
        <translation>Help</translation>
    </message>
    <message>
        <source>软件更新</source>
        <translation>Software Update</translation>
    </message>
    <message>
        <source>准备生成缩略图...</source>
        <translation>Preparing previews…</translation>
    </message>
    <message>
        <source>准备生成向量...</source>
        <translation>Preparing AI analysis…</translation>
    </message>
    <message>
        <source>处理完成</source>
        <translation>Done</translation>
    </message>
    <message>
        <source>thumb_progress</source>
        <translation>Previews: %1/%2</translation>
    </message>
    <message>
        <source>embed_progress</source>
        <translation>AI analysis: %1/%2</translation>
    </message>
    <message>
        <source>File Name</source>
        <translation>File Name</translation>
    </message>
    <message>
        <source>Creation Date</source>
        <translation>Creation Date</translation>
    </message>
    <message>
        <source>Modification Date</source>
        <translation>Modification Date</translation>
    </message>
    <message>
        <source>Rating</source>
        <translation>Rating</translation>
    </message>
    <message>
        <source>Ascending</source>
        <translation>Ascending</translation>
    </message>
    <message>
        <source>Descending</source>
        <translation>Descending</translation>
    </message>
    <message>
        <source>Sort</source>
        <translation>Sort</translation>
    </message>
    <message>
        <source>Sort by</source>
        <translation>Sort by</translation>
    </message>
    <message>
        <source>Order</source>
        <translation>Order</translation>
    </message>
    <message>
        <source>Show Info Panel</source>
        <translation>Show Info Panel</translation>
    </message>
    <message>
        <source>Hide Info Panel</source>
        <translation>Hide Info Panel</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>Back</translation>
    </message>
    <message>
        <source>Toolbar</source>
        <translation>Toolbar</translation>
    </message>
    <message>
        <source>Drop folders to add them to the library</source>
        <translation>Drop folders to add them to the library</translation>
    </message>
    <message>
        <source>Or drag a folder from your file manager onto this window.</source>
        <translation>Or drag a folder from your file manager onto this window.</translation>
    </message>
    <message>
        <source>Info</source>
        <translation>Info</translation>
    </message>
    <message>
        <source>Inspector.Empty.Title</source>
        <translation>Nothing Selected</translation>
    </message>
    <message>
        <source>Inspector.Empty.Subtitle</source>
        <translation>Select a photo or video to see its details.</translation>
    </message>
    <message>
        <source>This picture can't be shown.</source>
        <translation>This picture can’t be shown.</translation>
    </message>
    <message numerus="yes">
        <source>items_selected</source>
        <comment>Items selected count</comment>
        <translation>
            <numerusform>%n item selected</numerusform>
            <numerusform>%n items selected</numerusform>
        </translation>
    </message>
    <message>
        <source>照片库</source>
        <translation>Library</translation>
    </message>
    <message>
        <source>Search Photos</source>
        <translation>Search Photos</translation>
    </message>
    <message>
        <source>Clear Search</source>
        <translation>Clear Search</translation>
    </message>
    <message>
        <source>Loading</source>
        <translation>Loading</translation>
    </message>
    <message>
        <source>Add Folder</source>
        <translation>Add Folder</translation>
    </message>
    <message numerus="yes">
        <source>Add %n Folders</source>
        <translation>
            <numerusform>Add %n Folder</numerusform>
            <numerusform>Add %n Folders</numerusform>
        </translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>Enclosing Folder</source>
        <translation>Enclosing Folder</translation>
    </message>
    <message>
        <source>This folder can&apos;t be read.</source>
        <translation>This folder can’t be read.</translation>
    </message>
    <message>
        <source>There are no folders in this folder.</source>
        <translation>There are no folders in this folder.</translation>
    </message>
    <message>
        <source>Hold Ctrl or Shift to select several folders; double-click to open one.</source>
        <translation>Hold Ctrl or Shift to select several folders; double-click to open one.</translation>
    </message>
    <message>
        <source>Preview</source>
        <translation>Preview</translation>
    </message>
    <message>
        <source>AI Analysis</source>
        <translation>AI Analysis</translation>
    </message>
    <message>
        <source>Expand</source>
        <translation>Expand</translation>
    </message>
    <message>
        <source>Collapse</source>
        <translation>Collapse</translation>
    </message>
    <message>
        <source>VIDEO</source>
        <translation>VIDEO</translation>
    </message>
    <message>
        <source>Photos</source>
        <translation>Photos</translation>
    </message>
    <message>
        <source>该标签下没有媒体文件</source>
        <translation>No media files with this tag</translation>
    </message>
    <message>
        <source>No media files with this rating</source>
        <translation>No media files with this rating</translation>
    </message>
    <message>
        <source>No media files in this folder</source>
        <translation>No media files in this folder</translation>
    </message>
    <message>
        <source>Select a folder to view media files.</source>
        <translation>Select a folder to view media files.</translation>
    </message>
    <message>
        <source>搜索中...</source>
        <translation>Searching…</translation>
    </message>
    <message>
        <source>没有找到匹配的图片</source>
        <translation>No matching photos found</translation>
    </message>
    <message>
        <source>尝试使用不同的关键词</source>
        <translation>Try different keywords</translation>
    </message>
    <message>
        <source>%1, video</source>
        <translation>%1, video</translation>
    </message>
    <message>
        <source>Photo</source>
        <translation>Photo</translation>
    </message>
    <message>
        <source>Favorites</source>
        <translation>Favorites</translation>
    </message>
    <message>
        <source>Favorite</source>
        <translation>favorite</translation>
    </message>
    <message>
        <source>Ratings</source>
        <translation>Ratings</translation>
    </message>
    <message>
        <source>Tags</source>
        <translation>Tags</translation>
    </message>
    <message>
        <source>No tags</source>
        <translation>No tags</translation>
    </message>
    <message>
        <source>Add to Favorites</source>
        <translation>Add to Favorites</translation>
    </message>
    <message>
        <source>Remove from Favorites</source>
        <translation>Remove from Favorites</translation>
    </message>
    <message>
        <source>Open in Finder</source>
        <translation>Open in File Manager</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Delete</translation>
    </message>
    <message>
        <source>Expanded</source>
        <translation>Expanded</translation>
    </message>
    <message>
        <source>Collapsed</source>
        <translation>Collapsed</translation>
    </message>
    <message>
        <source>Sidebar</source>
        <translation>Sidebar</translation>
    </message>
    <message>
        <source>Sidebar Width</source>
        <translation>Sidebar Width</translation>
    </message>
    <message>
        <source>Info Panel Width</source>
        <translation>Info Panel Width</translation>
    </message>
    <message>
        <source>%1, %2</source>
        <translation>%1, %2</translation>
    </message>
    <message numerus="yes">
        <source>%n stars</source>
        <translation>
            <numerusform>%n star</numerusform>
            <numerusform>%n stars</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n items</source>
        <translation>
            <numerusform>%n item</numerusform>
            <numerusform>%n items</numerusform>
        </translation>
    </message>
</context>
</TS>
