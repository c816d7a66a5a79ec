<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN" sourcelanguage="en">
<context>
    <name>Qorvane</name>
    <message>
        <source>检查更新...</source>
        <translation>检查更新…</translation>
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
        <translation>准备生成缩略图…</translation>
    </message>
    <message>
        <source>准备生成向量...</source>
        <translation>准备生成向量…</translation>
    </message>
    <message>
        <source>处理完成</source>
        <translation>处理完成</translation>
    </message>
    <message>
        <source>thumb_progress</source>
        <translation>缩略图：%1/%2</translation>
    </message>
    <message>
        <source>embed_progress</source>
        <translation>向量：%1/%2</translation>
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
</context>
</TS>
