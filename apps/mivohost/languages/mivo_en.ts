<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="en">
<context>
    <name>SystemSettingsDialog</name>
    <message>
        <source>SystemSettings</source>
        <comment>Widget</comment>
        <translation>System settings</translation>
    </message>
    <message>
        <source>GeneralSettings</source>
        <comment>Widget</comment>
        <translation>General</translation>
    </message>
    <message>
        <source>UndoRedo</source>
        <comment>Widget</comment>
        <translation>Undo and redo</translation>
    </message>
    <message>
        <source>UndoSteps</source>
        <comment>Widget</comment>
        <translation>Undo steps</translation>
    </message>
    <message>
        <source>RestartTakeEffect</source>
        <comment>Widget</comment>
        <translation>Takes effect after a restart</translation>
    </message>
    <message>
        <source>OnlineSettings</source>
        <comment>Widget</comment>
        <translation>Online</translation>
    </message>
    <message>
        <source>AutoSyncResources</source>
        <comment>Widget</comment>
        <translation>Synchronise resources automatically</translation>
    </message>
    <message>
        <source>DisplaySettings</source>
        <comment>Widget</comment>
        <translation>Display</translation>
    </message>
    <message>
        <source>PlayControl</source>
        <comment>Widget</comment>
        <translation>Play control</translation>
    </message>
    <message>
        <source>DefaultPlayDuration</source>
        <comment>Widget</comment>
        <translation>Default play duration</translation>
    </message>
    <message>
        <source>Picture</source>
        <comment>Widget</comment>
        <translation>Picture</translation>
    </message>
    <message>
        <source>PowerPoint</source>
        <comment>Widget</comment>
        <translation>Presentation slide</translation>
    </message>
    <message>
        <source>OSD</source>
        <comment>Widget</comment>
        <translation>On-screen display</translation>
    </message>
</context>
<context>
    <name>MivoHost</name>
    <message>
        <source>Title</source>
        <comment>MainWindow</comment>
        <translation>Media and show control</translation>
    </message>
    <message>
        <source>Settings</source>
        <comment>MainWindow</comment>
        <translation>System settings…</translation>
    </message>
    <message>
        <source>Language</source>
        <comment>MainWindow</comment>
        <translation>Language</translation>
    </message>
    <message>
        <source>Log</source>
        <comment>MainWindow</comment>
        <translation>Log</translation>
    </message>
    <message>
        <source>StorePutAside</source>
        <comment>MainWindow</comment>
        <translation>The settings file could not be read and was put aside as “%1”. The settings are back at their defaults.</translation>
    </message>
    <message>
        <source>StoreInUse</source>
        <comment>MainWindow</comment>
        <translation>The settings file “%1” is in use by another mivohost. Close that one first.</translation>
    </message>
    <message>
        <source>StoreFailed</source>
        <comment>MainWindow</comment>
        <translation>The settings file “%1” cannot be opened: %2</translation>
    </message>
    <message>
        <source>SettingNotSaved</source>
        <comment>MainWindow</comment>
        <translation>A setting could not be saved: %1. Its old value stays in force.</translation>
    </message>
</context>
</TS>
