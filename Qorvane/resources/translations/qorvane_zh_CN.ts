<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN" sourcelanguage="en">
<context>
    <name>Qorvane</name>
    <message>
        <source>检查更新...</source>
        <translation>检查更新...</translation>
    </message>
    <message>
        <source>帮助</source>
        <translation>帮助</translation>
    </message>
    <message>
        <source>软件更新</source>
        <translation>软件更新</translation>
    </message>
    <message>
        <source>准备生成缩略图...</source>
        <translation>准备生成缩略图...</translation>
    </message>
    <message>
        <source>准备生成向量...</source>
        <translation>准备生成向量...</translation>
    </message>
    <message>
        <source>处理完成</source>
        <translation>处理完成</translation>
    </message>
    <message>
        <source>thumb_progress</source>
        <translation>缩略图: %1/%2</translation>
    </message>
    <message>
        <source>embed_progress</source>
        <translation>向量: %1/%2</translation>
    </message>
    <message>
        <source>File Name</source>
        <translation>文件名</translation>
    </message>
    <message>
        <source>Creation Date</source>
        <translation>创建日期</translation>
    </message>
    <message>
        <source>Modification Date</source>
        <translation>修改日期</translation>
    </message>
    <message>
        <source>Rating</source>
        <translation>评分</translation>
    </message>
    <message>
        <source>Ascending</source>
        <translation>升序</translation>
    </message>
    <message>
        <source>Descending</source>
        <translation>降序</translation>
    </message>
    <message>
        <source>Sort</source>
        <translation>排序</translation>
    </message>
    <message>
        <source>Sort by</source>
        <translation>排序依据</translation>
    </message>
    <message>
        <source>Order</source>
        <translation>顺序</translation>
    </message>
    <message>
        <source>Show Info Panel</source>
        <translation>显示信息面板</translation>
    </message>
    <message>
        <source>Hide Info Panel</source>
        <translation>隐藏信息面板</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>返回</translation>
    </message>
    <message>
        <source>Toolbar</source>
        <translation>工具栏</translation>
    </message>
    <message>
        <source>Drop folders to add them to the library</source>
        <translation>松开即可将文件夹添加到照片库</translation>
    </message>
    <message>
        <source>Or drag a folder from your file manager onto this window.</source>
        <translation>也可以把文件夹从文件管理器拖到此窗口。</translation>
    </message>
    <message>
        <source>Info</source>
        <translation>信息</translation>
    </message>
    <message>
        <source>Inspector.Empty.Title</source>
        <translation>未选择任何项目</translation>
    </message>
    <message>
        <source>Inspector.Empty.Subtitle</source>
        <translation>选择照片或视频即可查看详细信息。</translation>
    </message>
    <message>
        <source>This picture can't be shown.</source>
        <translation>无法显示此图片。</translation>
    </message>
    <message numerus="yes">
        <source>items_selected</source>
        <comment>Items selected count</comment>
        <translation>
            <numerusform>已选择 %n 项</numerusform>
        </translation>
    </message>
    <message>
        <source>照片库</source>
        <translation>照片库</translation>
    </message>
    <message>
        <source>Search Photos</source>
        <translation>搜索照片</translation>
    </message>
    <message>
        <source>Clear Search</source>
        <translation>清除搜索</translation>
    </message>
    <message>
        <source>Loading</source>
        <translation>正在载入</translation>
    </message>
    <message>
        <source>Add Folder</source>
        <translation>添加文件夹</translation>
    </message>
    <message numerus="yes">
        <source>Add %n Folders</source>
        <translation>
            <numerusform>添加 %n 个文件夹</numerusform>
        </translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>Enclosing Folder</source>
        <translation>上级文件夹</translation>
    </message>
    <message>
        <source>This folder can&apos;t be read.</source>
        <translation>无法读取此文件夹。</translation>
    </message>
    <message>
        <source>There are no folders in this folder.</source>
        <translation>此文件夹中没有子文件夹。</translation>
    </message>
    <message>
        <source>Hold Ctrl or Shift to select several folders; double-click to open one.</source>
        <translation>按住 Ctrl 或 Shift 可选择多个文件夹；双击可打开文件夹。</translation>
    </message>
    <message>
        <source>Preview</source>
        <translation>预览</translation>
    </message>
    <message>
        <source>AI Analysis</source>
        <translation>AI 分析</translation>
    </message>
    <message>
        <source>Expand</source>
        <translation>展开</translation>
    </message>
    <message>
        <source>Collapse</source>
        <translation>折叠</translation>
    </message>
    <message>
        <source>VIDEO</source>
        <translation>视频</translation>
    </message>
    <message>
        <source>Photos</source>
        <translation>照片</translation>
    </message>
    <message>
        <source>该标签下没有媒体文件</source>
        <translation>该标签下没有媒体文件</translation>
    </message>
    <message>
        <source>No media files with this rating</source>
        <translation>该评分下没有媒体文件</translation>
    </message>
    <message>
        <source>No media files in this folder</source>
        <translation>该文件夹中没有媒体文件</translation>
    </message>
    <message>
        <source>Select a folder to view media files.</source>
        <translation>选择文件夹即可查看媒体文件。</translation>
    </message>
    <message>
        <source>搜索中...</source>
        <translation>搜索中...</translation>
    </message>
    <message>
        <source>没有找到匹配的图片</source>
        <translation>没有找到匹配的图片</translation>
    </message>
    <message>
        <source>尝试使用不同的关键词</source>
        <translation>尝试使用不同的关键词</translation>
    </message>
    <message>
        <source>%1, video</source>
        <translation>%1，视频</translation>
    </message>
    <message>
        <source>Photo</source>
        <translation>照片</translation>
    </message>
    <message>
        <source>Favorites</source>
        <translation>个人收藏</translation>
    </message>
    <message>
        <source>Favorite</source>
        <translation>已收藏</translation>
    </message>
    <message>
        <source>Ratings</source>
        <translation>评分</translation>
    </message>
    <message>
        <source>Tags</source>
        <translation>标签</translation>
    </message>
    <message>
        <source>No tags</source>
        <translation>无标签</translation>
    </message>
    <message>
        <source>Add to Favorites</source>
        <translation>添加到个人收藏</translation>
    </message>
    <message>
        <source>Remove from Favorites</source>
        <translation>从个人收藏中移除</translation>
    </message>
    <message>
        <source>Open in Finder</source>
        <translation>在文件管理器中打开</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>删除</translation>
    </message>
    <message>
        <source>Expanded</source>
        <translation>已展开</translation>
    </message>
    <message>
        <source>Collapsed</source>
        <translation>已折叠</translation>
    </message>
    <message>
        <source>Sidebar</source>
        <translation>侧边栏</translation>
    </message>
    <message>
        <source>Sidebar Width</source>
        <translation>侧边栏宽度</translation>
    </message>
    <message>
        <source>Info Panel Width</source>
        <translation>信息面板宽度</translation>
    </message>
    <message>
        <source>%1, %2</source>
        <translation>%1，%2</translation>
    </message>
    <message numerus="yes">
        <source>%n stars</source>
        <translation>
            <numerusform>%n 星</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n items</source>
        <translation>
            <numerusform>%n 项</numerusform>
        </translation>
    </message>
</context>
</TS>
