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
        <translation>Preparing thumbnails…</translation>
    </message>
    <message>
        <source>准备生成向量...</source>
        <translation>Preparing vectors…</translation>
    </message>
    <message>
        <source>处理完成</source>
        <translation>Done</translation>
    </message>
    <message>
        <source>thumb_progress</source>
        <translation>Thumbnails: %1/%2</translation>
    </message>
    <message>
        <source>embed_progress</source>
        <translation>Vectors: %1/%2</translation>
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
</context>
</TS>
