<?xml version="1.0" encoding="utf-8"?>
<TS version="2.1" language="zh_CN">
<context>
    <name>SystemSettingsDialog</name>
    <message><source>Preview</source><comment>Widget</comment><translation>预览</translation></message>
    <message><source>Frames per second</source><comment>Widget</comment><translation>每秒帧数</translation></message>
</context>
</TS>
