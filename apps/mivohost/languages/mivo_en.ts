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
        <source>SettingsSearch</source>
        <comment>Widget</comment>
        <translation>Search</translation>
    </message>
    <message>
        <source>SettingsSearchTip</source>
        <comment>Widget</comment>
        <translation>Search all settings (Ctrl+F). Return goes to the next place, Shift+Return to the one before, the down arrow to the control.</translation>
    </message>
    <message>
        <source>SettingsSearchCount</source>
        <comment>Widget</comment>
        <translation>Found: %1</translation>
    </message>
    <message>
        <source>SettingsSearchPlace</source>
        <comment>Widget</comment>
        <translation>%1 of %2</translation>
    </message>
    <message>
        <source>SettingsSearchNone</source>
        <comment>Widget</comment>
        <translation>Nothing found</translation>
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
        <source>DisplayControl</source>
        <comment>Widget</comment>
        <translation>Display control</translation>
    </message>
    <message>
        <source>BlackScreenMute</source>
        <comment>Widget</comment>
        <translation>Mute while the screen is black</translation>
    </message>
    <message>
        <source>FadeInTime</source>
        <comment>Widget</comment>
        <translation>Fade in</translation>
    </message>
    <message>
        <source>FadeOutTime</source>
        <comment>Widget</comment>
        <translation>Fade out</translation>
    </message>
    <message>
        <source>ApplyAllSettings</source>
        <comment>Widget</comment>
        <translation>Apply to all programs</translation>
    </message>
    <message>
        <source>ImageHierarchy</source>
        <comment>Widget</comment>
        <translation>Layers that overlap</translation>
    </message>
    <message>
        <source>ProgramMgrPriority</source>
        <comment>Widget</comment>
        <translation>Program manager first</translation>
    </message>
    <message>
        <source>TimelinePriority</source>
        <comment>Widget</comment>
        <translation>Timeline first</translation>
    </message>
    <message>
        <source>CodecControl</source>
        <comment>Widget</comment>
        <translation>Codec control</translation>
    </message>
    <message>
        <source>MainProgramWindow</source>
        <comment>Widget</comment>
        <translation>Main program window</translation>
    </message>
    <message>
        <source>DynamicRange</source>
        <comment>Widget</comment>
        <translation>Dynamic range</translation>
    </message>
    <message>
        <source>BitDepth</source>
        <comment>Widget</comment>
        <translation>Bit depth</translation>
    </message>
    <message>
        <source>DisplayTechnologyStandard</source>
        <comment>Widget</comment>
        <translation>Display technology standard</translation>
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
        <translation>Presentation</translation>
    </message>
    <message>
        <source>OSD</source>
        <comment>Widget</comment>
        <translation>On-screen display</translation>
    </message>
    <message>
        <source>StartCloseGroup</source>
        <comment>Widget</comment>
        <translation>Start and close</translation>
    </message>
    <message>
        <source>StartupSelfStart</source>
        <comment>Widget</comment>
        <translation>Start with the system</translation>
    </message>
    <message>
        <source>Delay</source>
        <comment>Widget</comment>
        <translation>Delay</translation>
    </message>
    <message>
        <source>Seconds</source>
        <comment>Widget</comment>
        <translation>seconds</translation>
    </message>
    <message>
        <source>Second</source>
        <comment>Widget</comment>
        <translation> second</translation>
    </message>
    <message>
        <source>SlowLoadingSoundCardPrompt</source>
        <comment>Widget</comment>
        <translation>For sound cards that are slow to load</translation>
    </message>
    <message>
        <source>MinimizeToTrayWhenClosingSoftware</source>
        <comment>Widget</comment>
        <translation>Minimize to the tray when the window is closed</translation>
    </message>
    <message>
        <source>TimedAutomaticRestart</source>
        <comment>Widget</comment>
        <translation>Restart automatically</translation>
    </message>
    <message>
        <source>TimedShutdown</source>
        <comment>Widget</comment>
        <translation>Shut down</translation>
    </message>
    <message>
        <source>EveryMonth</source>
        <comment>Widget</comment>
        <translation>Monthly</translation>
    </message>
    <message>
        <source>EveryDay</source>
        <comment>Widget</comment>
        <translation>Daily</translation>
    </message>
    <message>
        <source>Day</source>
        <comment>Widget</comment>
        <translation>Day</translation>
    </message>
    <message>
        <source>NoSuchDay</source>
        <comment>Widget</comment>
        <translation>No such day: never restarts</translation>
    </message>
    <message>
        <source>AutomaticRestartCountdownTextPrefix</source>
        <comment>Widget</comment>
        <translation>The machine restarts in</translation>
    </message>
    <message>
        <source>AutomaticRestartCountdownTextSuffix</source>
        <comment>Widget</comment>
        <translation>unless you cancel.</translation>
    </message>
    <message>
        <source>ShutdownCountdownTextPrefix</source>
        <comment>Widget</comment>
        <translation>The machine shuts down in</translation>
    </message>
    <message>
        <source>ShutdownCountdownTextSuffix</source>
        <comment>Widget</comment>
        <translation>unless you cancel.</translation>
    </message>
    <message>
        <source>CancelAutomaticRestart</source>
        <comment>Widget</comment>
        <translation>Do not restart</translation>
    </message>
    <message>
        <source>ImmediateAutomaticRestart</source>
        <comment>Widget</comment>
        <translation>Restart now</translation>
    </message>
    <message>
        <source>AutomaticRestartCancelText</source>
        <comment>Widget</comment>
        <translation>The open project is saved before the restart.</translation>
    </message>
    <message>
        <source>CancelShutdown</source>
        <comment>Widget</comment>
        <translation>Do not shut down</translation>
    </message>
    <message>
        <source>ImmediateShutdown</source>
        <comment>Widget</comment>
        <translation>Shut down now</translation>
    </message>
    <message>
        <source>ShutdownCancelText</source>
        <comment>Widget</comment>
        <translation>The open project is saved before the shutdown.</translation>
    </message>
    <message>
        <source>January</source>
        <comment>Widget</comment>
        <translation>Jan</translation>
    </message>
    <message>
        <source>February</source>
        <comment>Widget</comment>
        <translation>Feb</translation>
    </message>
    <message>
        <source>March</source>
        <comment>Widget</comment>
        <translation>Mar</translation>
    </message>
    <message>
        <source>April</source>
        <comment>Widget</comment>
        <translation>Apr</translation>
    </message>
    <message>
        <source>May</source>
        <comment>Widget</comment>
        <translation>May</translation>
    </message>
    <message>
        <source>June</source>
        <comment>Widget</comment>
        <translation>Jun</translation>
    </message>
    <message>
        <source>July</source>
        <comment>Widget</comment>
        <translation>Jul</translation>
    </message>
    <message>
        <source>August</source>
        <comment>Widget</comment>
        <translation>Aug</translation>
    </message>
    <message>
        <source>September</source>
        <comment>Widget</comment>
        <translation>Sep</translation>
    </message>
    <message>
        <source>October</source>
        <comment>Widget</comment>
        <translation>Oct</translation>
    </message>
    <message>
        <source>November</source>
        <comment>Widget</comment>
        <translation>Nov</translation>
    </message>
    <message>
        <source>December</source>
        <comment>Widget</comment>
        <translation>Dec</translation>
    </message>
    <message>
        <source>Monday</source>
        <comment>Widget</comment>
        <translation>Mon</translation>
    </message>
    <message>
        <source>Tuesday</source>
        <comment>Widget</comment>
        <translation>Tue</translation>
    </message>
    <message>
        <source>Wednesday</source>
        <comment>Widget</comment>
        <translation>Wed</translation>
    </message>
    <message>
        <source>Thursday</source>
        <comment>Widget</comment>
        <translation>Thu</translation>
    </message>
    <message>
        <source>Friday</source>
        <comment>Widget</comment>
        <translation>Fri</translation>
    </message>
    <message>
        <source>Saturday</source>
        <comment>Widget</comment>
        <translation>Sat</translation>
    </message>
    <message>
        <source>Sunday</source>
        <comment>Widget</comment>
        <translation>Sun</translation>
    </message>
    <message>
        <source>ProjectFile</source>
        <comment>Widget</comment>
        <translation>Project file</translation>
    </message>
    <message>
        <source>OpenRecentFilesAfterStartup</source>
        <comment>Widget</comment>
        <translation>Open the most recent project after startup</translation>
    </message>
    <message>
        <source>OpenProjectFileDefaultPlay</source>
        <comment>Widget</comment>
        <translation>Play a program when a project is opened</translation>
    </message>
    <message>
        <source>LastTime</source>
        <comment>Widget</comment>
        <translation>Last played</translation>
    </message>
    <message>
        <source>ProgramList</source>
        <comment>Widget</comment>
        <translation>Programs</translation>
    </message>
    <message>
        <source>AutoSaveProjectFiles</source>
        <comment>Widget</comment>
        <translation>Save the project automatically</translation>
    </message>
    <message>
        <source>Interval</source>
        <comment>Widget</comment>
        <translation>every</translation>
    </message>
    <message>
        <source>saves</source>
        <comment>Widget</comment>
        <translation>minutes</translation>
    </message>
    <message>
        <source>SaveMaximumQuantity</source>
        <comment>Widget</comment>
        <translation>Saves kept</translation>
    </message>
    <message>
        <source>NoPromptWhenCloseSoftware</source>
        <comment>Widget</comment>
        <translation>Close the application without asking to save the project</translation>
    </message>
    <message>
        <source>NewProjResetOutput</source>
        <comment>Widget</comment>
        <translation>Reset the outputs for a new project</translation>
    </message>
    <message>
        <source>NewProjResetRecommand</source>
        <comment>Widget</comment>
        <translation>Recommended: a new project then starts without the outputs of the last one</translation>
    </message>
    <message>
        <source>AutoSavePath</source>
        <comment>Widget</comment>
        <translation>Folder of automatic saves</translation>
    </message>
    <message>
        <source>Browse</source>
        <comment>Widget</comment>
        <translation>Browse…</translation>
    </message>
    <message>
        <source>Open</source>
        <comment>Widget</comment>
        <translation>Open</translation>
    </message>
    <message>
        <source>Clear</source>
        <comment>Widget</comment>
        <translation>Clear…</translation>
    </message>
    <message>
        <source>NoSpace</source>
        <comment>Widget</comment>
        <translation>Too little free space</translation>
    </message>
    <message>
        <source>RemainSpace</source>
        <comment>Widget</comment>
        <translation>Free: </translation>
    </message>
    <message>
        <source>FileInfoGroup</source>
        <comment>Widget</comment>
        <translation>Files and folders</translation>
    </message>
    <message>
        <source>PlayLogStorageTime</source>
        <comment>Widget</comment>
        <translation>Keep the play log</translation>
    </message>
    <message>
        <source>PermanentDefault</source>
        <comment>Widget</comment>
        <translation>Forever</translation>
    </message>
    <message>
        <source>OneMonth</source>
        <comment>Widget</comment>
        <translation>1 month</translation>
    </message>
    <message>
        <source>ThreeMonths</source>
        <comment>Widget</comment>
        <translation>3 months</translation>
    </message>
    <message>
        <source>SixMonths</source>
        <comment>Widget</comment>
        <translation>6 months</translation>
    </message>
    <message>
        <source>TwelveMonths</source>
        <comment>Widget</comment>
        <translation>12 months</translation>
    </message>
    <message>
        <source>LogPath</source>
        <comment>Widget</comment>
        <translation>Play log</translation>
    </message>
    <message>
        <source>CachePath</source>
        <comment>Widget</comment>
        <translation>Cache</translation>
    </message>
    <message>
        <source>SharePath</source>
        <comment>Widget</comment>
        <translation>Shared files</translation>
    </message>
    <message>
        <source>SelectFolder</source>
        <comment>Widget</comment>
        <translation>Choose a folder</translation>
    </message>
    <message>
        <source>NameInput</source>
        <comment>Widget</comment>
        <translation>Folder:</translation>
    </message>
    <message>
        <source>OpenProject</source>
        <comment>Widget</comment>
        <translation>Choose</translation>
    </message>
    <message>
        <source>Cancel</source>
        <comment>Widget</comment>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>OK</source>
        <comment>Widget</comment>
        <translation>OK</translation>
    </message>
    <message>
        <source>MoblieTips</source>
        <comment>Widget</comment>
        <translation>This folder is on a removable or mobile device. Please choose one on a fixed drive.</translation>
    </message>
    <message>
        <source>MoblieTip</source>
        <comment>Widget</comment>
        <translation>This folder is on a removable or mobile device. Automatic saves need a fixed drive.</translation>
    </message>
    <message>
        <source>NoPermission</source>
        <comment>Widget</comment>
        <translation>You may not write files in this folder. Please choose another one.</translation>
    </message>
    <message>
        <source>NoAuthorized</source>
        <comment>Widget</comment>
        <translation>You may not write files in this folder. Automatic saves need another one.</translation>
    </message>
    <message>
        <source>MakeDirTips</source>
        <comment>Widget</comment>
        <translation>The sub-folder could not be created in the chosen folder.</translation>
    </message>
    <message>
        <source>ClearTips</source>
        <comment>Widget</comment>
        <translation>Delete everything in this folder? This cannot be undone.</translation>
    </message>
    <message>
        <source>ClearingFolder</source>
        <comment>Widget</comment>
        <translation>Clearing the folder…</translation>
    </message>
    <message>
        <source>CheckingFolder</source>
        <comment>Widget</comment>
        <translation>Waiting for the folder…</translation>
    </message>
    <message>
        <source>FolderNoAnswer</source>
        <comment>Widget</comment>
        <translation>The folder does not answer. Nothing has been changed.</translation>
    </message>
    <message>
        <source>ClearRefused</source>
        <comment>Widget</comment>
        <translation>This folder is not cleared: it is missing, or it is the root of a drive or holds the user’s own files.</translation>
    </message>
    <message>
        <source>ClearIncomplete</source>
        <comment>Widget</comment>
        <translation>Not everything could be removed. Still there:</translation>
    </message>
    <message>
        <source>ClearMore</source>
        <comment>Widget</comment>
        <translation>… and %1 more</translation>
    </message>
    <message>
        <source>OpenFolderFailed</source>
        <comment>Widget</comment>
        <translation>This folder cannot be opened.</translation>
    </message>
    <message>
        <source>netSetting</source>
        <comment>Widget</comment>
        <translation>Network</translation>
    </message>
    <message>
        <source>udpPort</source>
        <comment>Widget</comment>
        <translation>UDP port</translation>
    </message>
    <message>
        <source>tcpPort</source>
        <comment>Widget</comment>
        <translation>TCP port</translation>
    </message>
    <message>
        <source>open</source>
        <comment>Widget</comment>
        <translation>Open</translation>
    </message>
    <message>
        <source>close</source>
        <comment>Widget</comment>
        <translation>Close</translation>
    </message>
    <message>
        <source>exteranlContralSetting</source>
        <comment>Widget</comment>
        <translation>External control</translation>
    </message>
    <message>
        <source>openSuccess</source>
        <comment>Widget</comment>
        <translation>Open</translation>
    </message>
    <message>
        <source>UseMIDI</source>
        <comment>Widget</comment>
        <translation>Use MIDI</translation>
    </message>
    <message>
        <source>MIDIDevice</source>
        <comment>Widget</comment>
        <translation>Devices</translation>
    </message>
    <message>
        <source>useDMX</source>
        <comment>Widget</comment>
        <translation>Use DMX (Art-Net)</translation>
    </message>
    <message>
        <source>NodeName</source>
        <comment>Widget</comment>
        <translation>Node name</translation>
    </message>
    <message>
        <source>ChannelOffest</source>
        <comment>Widget</comment>
        <translation>Channel offset</translation>
    </message>
    <message>
        <source>Subnet</source>
        <comment>Widget</comment>
        <translation>Subnet</translation>
    </message>
    <message>
        <source>Domain</source>
        <comment>Widget</comment>
        <translation>Net</translation>
    </message>
    <message>
        <source>ApplyDMX</source>
        <comment>Widget</comment>
        <translation>Apply</translation>
    </message>
    <message>
        <source>UseOSC</source>
        <comment>Widget</comment>
        <translation>Use OSC</translation>
    </message>
    <message>
        <source>OSCPort</source>
        <comment>Widget</comment>
        <translation>OSC port</translation>
    </message>
    <message>
        <source>ConfirmCoverExistShortCut</source>
        <comment>Widget</comment>
        <translation>Another action has this already. Move it here?</translation>
    </message>
    <message>
        <source>SystemShortCutWithRepeat</source>
        <comment>Widget</comment>
        <translation>The application itself needs this key. Choose another one.</translation>
    </message>
    <message>
        <source>General</source>
        <comment>Widget</comment>
        <translation>Stage colours</translation>
    </message>
    <message>
        <source>PresetsColor</source>
        <comment>Widget</comment>
        <translation>Presets</translation>
    </message>
    <message>
        <source>CanvesSetting</source>
        <comment>Widget</comment>
        <translation>Canvas</translation>
    </message>
    <message>
        <source>TextColor</source>
        <comment>Widget</comment>
        <translation>Output</translation>
    </message>
    <message>
        <source>CustomColor</source>
        <comment>Widget</comment>
        <translation>Custom</translation>
    </message>
    <message>
        <source>SelectColor</source>
        <comment>Widget</comment>
        <translation>Choose a colour</translation>
    </message>
    <message>
        <source>Determine</source>
        <comment>Widget</comment>
        <translation>OK</translation>
    </message>
    <message>
        <source>PickScreenColor</source>
        <comment>Widget</comment>
        <translation>Pick from the screen</translation>
    </message>
    <message>
        <source>NoScreenPicture</source>
        <comment>Widget</comment>
        <translation>This desktop gives programs no picture of the screen, so that no colour can be picked from it.</translation>
    </message>
    <message>
        <source>OfficeSettings</source>
        <comment>Widget</comment>
        <translation>Presentations</translation>
    </message>
    <message>
        <source>OfficePPTSettings</source>
        <comment>Widget</comment>
        <translation>Slide shows</translation>
    </message>
    <message>
        <source>OfficePPTAutoplay</source>
        <comment>Widget</comment>
        <translation>Advance slides automatically</translation>
    </message>
    <message>
        <source>OfficePPTAutoplayInterval</source>
        <comment>Widget</comment>
        <translation>Interval</translation>
    </message>
    <message>
        <source>OfficePPTPlayMode</source>
        <comment>Widget</comment>
        <translation>Play mode</translation>
    </message>
    <message>
        <source>OfficePPTPlayAnimationMode</source>
        <comment>Widget</comment>
        <translation>Slides with their animations</translation>
    </message>
    <message>
        <source>OfficePPTPlayImageMode</source>
        <comment>Widget</comment>
        <translation>Still images</translation>
    </message>
    <message>
        <source>OfficePPTResolution</source>
        <comment>Widget</comment>
        <translation>Resolution</translation>
    </message>
    <message>
        <source>OfficePPTPresetsResolution</source>
        <comment>Widget</comment>
        <translation>Preset</translation>
    </message>
    <message>
        <source>OfficePPTSettingTip</source>
        <comment>Widget</comment>
        <translation>Presentations take these settings up when they are next opened</translation>
    </message>
    <message>
        <source>OfficePPTResolutionSettingTip</source>
        <comment>Widget</comment>
        <translation>A higher resolution needs more memory and takes longer to load</translation>
    </message>
    <message>
        <source>OfficePPTDefaultResolution</source>
        <comment>Widget</comment>
        <translation>default</translation>
    </message>
    <message>
        <source>OfficePPTOwnResolutionTip</source>
        <comment>Widget</comment>
        <translation>0: the presentation’s own size is used</translation>
    </message>
    <message>
        <source>AudioSettings</source>
        <comment>Widget</comment>
        <translation>Audio</translation>
    </message>
    <message>
        <source>AudioMapping</source>
        <comment>Widget</comment>
        <translation>Sound-card mappings</translation>
    </message>
    <message>
        <source>soundCardInfo</source>
        <comment>Widget</comment>
        <translation>Each mapping is one output of a program, which plays on the chosen sound card of this machine and of each device of the cluster. A sound card can be chosen in one mapping only.</translation>
    </message>
    <message>
        <source>addMapping</source>
        <comment>Widget</comment>
        <translation>Add mapping</translation>
    </message>
    <message>
        <source>SoundCardMappingsFull</source>
        <comment>Widget</comment>
        <translation>There are 20 mappings, which is the most. Delete one to add another.</translation>
    </message>
    <message>
        <source>MappingName</source>
        <comment>Widget</comment>
        <translation>Name</translation>
    </message>
    <message>
        <source>MappingNameInUse</source>
        <comment>Widget</comment>
        <translation>Another mapping has this name.</translation>
    </message>
    <message>
        <source>DeleteMapping</source>
        <comment>Widget</comment>
        <translation>Delete</translation>
    </message>
    <message>
        <source>DeleteMappingTips</source>
        <comment>Widget</comment>
        <translation>Delete the mapping “%1”? What plays on it will not be heard any more.</translation>
    </message>
    <message>
        <source>None</source>
        <comment>Widget</comment>
        <translation>None</translation>
    </message>
    <message>
        <source>SoundCardNotConnected</source>
        <comment>Widget</comment>
        <translation>(not connected)</translation>
    </message>
    <message>
        <source>SoundCardPlaysNowhere</source>
        <comment>Widget</comment>
        <translation>No channel is on: this plays nowhere.</translation>
    </message>
    <message>
        <source>ThisMachine</source>
        <comment>Widget</comment>
        <translation>This machine</translation>
    </message>
    <message>
        <source>SoundCardNumberOf</source>
        <comment>Widget</comment>
        <translation>The sound cards of </translation>
    </message>
    <message>
        <source>BackUp</source>
        <comment>Widget</comment>
        <translation>the backup </translation>
    </message>
    <message>
        <source>LocalDevice</source>
        <comment>Widget</comment>
        <translation> and this machine (</translation>
    </message>
    <message>
        <source>SlaverBackUp</source>
        <comment>Widget</comment>
        <translation>the slave's backup </translation>
    </message>
    <message>
        <source>Slaver</source>
        <comment>Widget</comment>
        <translation> and the slave (</translation>
    </message>
    <message>
        <source>SoundCardMisMatch</source>
        <comment>Widget</comment>
        <translation>do not match.</translation>
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
        <source>StoreFromCopy</source>
        <comment>MainWindow</comment>
        <translation>The settings file could not be used. The settings are those of %1; what was changed after that is missing. The unusable file was kept under another name.</translation>
    </message>
    <message>
        <source>StoreMissing</source>
        <comment>MainWindow</comment>
        <translation>The settings file “%1” was missing. The settings are back at their defaults.</translation>
    </message>
    <message>
        <source>StoreMissingFromCopy</source>
        <comment>MainWindow</comment>
        <translation>The settings file was missing. The settings are those of %1; what was changed after that is missing.</translation>
    </message>
    <message>
        <source>StoreDamaged</source>
        <comment>MainWindow</comment>
        <translation>The settings file “%1” cannot be used: %2.

There is a good copy from %3. Changes made after that time are missing in it.

Without an answer the copy is used in %4 seconds.</translation>
    </message>
    <message>
        <source>UseCopy</source>
        <comment>MainWindow</comment>
        <translation>Use the copy</translation>
    </message>
    <message>
        <source>StoreCopyFailed</source>
        <comment>MainWindow</comment>
        <translation>No safety copy of the settings could be made: %1</translation>
    </message>
    <message>
        <source>LogFailed</source>
        <comment>MainWindow</comment>
        <translation>The log is not kept in a file: %1</translation>
    </message>
    <message>
        <source>DataFailed</source>
        <comment>MainWindow</comment>
        <translation>The file “%1” cannot be used: %2</translation>
    </message>
    <message>
        <source>SettingsNotUsed</source>
        <comment>MainWindow</comment>
        <translation>These settings cannot be used as they are kept, and have their defaults until they are set: %1</translation>
    </message>
    <message>
        <source>SavingBeforeEnd</source>
        <comment>MainWindow</comment>
        <translation>Settings and the project are being saved.</translation>
    </message>
    <message>
        <source>ChangeLost</source>
        <comment>MainWindow</comment>
        <translation>“%1” is now %3, set by %4, which was faster than your change to %2</translation>
    </message>
    <message>
        <source>SetAgain</source>
        <comment>MainWindow</comment>
        <translation>Set again</translation>
    </message>
    <message>
        <source>SettingTooLong</source>
        <comment>MainWindow</comment>
        <translation>The setting “%1” is too long to be shared, and is kept on this machine only</translation>
    </message>
    <message>
        <source>MachineAddress</source>
        <comment>MainWindow</comment>
        <translation>Address</translation>
    </message>
    <message>
        <source>MachineAway</source>
        <comment>MainWindow</comment>
        <translation>Not connected</translation>
    </message>
    <message>
        <source>MachineConnected</source>
        <comment>MainWindow</comment>
        <translation>Connected</translation>
    </message>
    <message>
        <source>MachineName</source>
        <comment>MainWindow</comment>
        <translation>Machine</translation>
    </message>
    <message>
        <source>MachineState</source>
        <comment>MainWindow</comment>
        <translation>State</translation>
    </message>
    <message>
        <source>MachineThis</source>
        <comment>MainWindow</comment>
        <translation>This machine</translation>
    </message>
    <message>
        <source>MachineVersion</source>
        <comment>MainWindow</comment>
        <translation>Version</translation>
    </message>
    <message>
        <source>Machines</source>
        <comment>MainWindow</comment>
        <translation>Machines</translation>
    </message>
    <message>
        <source>OtherVersion</source>
        <comment>MainWindow</comment>
        <translation>%1 has version %2 of mivohost, and this machine %3</translation>
    </message>
    <message>
        <source>ShowAlone</source>
        <comment>MainWindow</comment>
        <translation>Show “%1”: alone since %2</translation>
    </message>
    <message>
        <source>ShowConnected</source>
        <comment>MainWindow</comment>
        <translation>Show “%1”: connected to %2</translation>
    </message>
    <message>
        <source>ShowReason</source>
        <comment>MainWindow</comment>
        <translation> (%1: %2)</translation>
    </message>
    <message>
        <source>KeysClash</source>
        <comment>MainWindow</comment>
        <translation>Since another machine of the show has changed its keys, some are bound to several actions, of which they trigger the first: %1</translation>
    </message>
    <message>
        <source>KeysReplaced</source>
        <comment>MainWindow</comment>
        <translation>The shortcut file had these keys otherwise than the show, whose keys hold here now: %1</translation>
    </message>
    <message>
        <source>ShowReplaced</source>
        <comment>MainWindow</comment>
        <translation>The show has these settings otherwise than this machine had, and they hold here now: %1</translation>
    </message>
    <message>
        <source>ShowWaiting</source>
        <comment>MainWindow</comment>
        <translation>, changes not sent yet: %1</translation>
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
        <source>DataInUse</source>
        <comment>MainWindow</comment>
        <translation>The shortcuts and the log in “%1” are in use by another mivohost. Close that one first.</translation>
    </message>
    <message>
        <source>Dismiss</source>
        <comment>MainWindow</comment>
        <translation>Dismiss</translation>
    </message>
    <message>
        <source>SettingNotSaved</source>
        <comment>MainWindow</comment>
        <translation>A setting could not be saved, and its old value stays in force: %1</translation>
    </message>
    <message>
        <source>BindingsNotWritten</source>
        <comment>MainWindow</comment>
        <translation>The bindings of devices could not be saved: %1. The new ones hold meanwhile, and saving them is tried again.</translation>
    </message>
    <message>
        <source>BindingsWritten</source>
        <comment>MainWindow</comment>
        <translation>The bindings of devices are saved again.</translation>
    </message>
    <message>
        <source>SharedNotSaved</source>
        <comment>MainWindow</comment>
        <translation>Shared settings hold here, but could not be saved on this machine: %1. Saving them is tried again.</translation>
    </message>
    <message>
        <source>ShowNotSaved</source>
        <comment>MainWindow</comment>
        <translation>What this machine knows of the show could not be saved: %1. Saving it is tried again.</translation>
    </message>
    <message>
        <source>ExportSettingsTitle</source>
        <comment>MainWindow</comment>
        <translation>Export settings</translation>
    </message>
    <message>
        <source>ImportSettingsTitle</source>
        <comment>MainWindow</comment>
        <translation>Import settings</translation>
    </message>
    <message>
        <source>SettingsFiles</source>
        <comment>MainWindow</comment>
        <translation>Settings</translation>
    </message>
    <message>
        <source>SettingsToExport</source>
        <comment>MainWindow</comment>
        <translation>Settings that go into the file. Shortcuts have a file of their own.</translation>
    </message>
    <message>
        <source>SettingsOrigin</source>
        <comment>MainWindow</comment>
        <translation>From “%1”, %2, version %3</translation>
    </message>
    <message>
        <source>SettingsToImport</source>
        <comment>MainWindow</comment>
        <translation>These settings change:</translation>
    </message>
    <message>
        <source>SettingsToImportNotOwn</source>
        <comment>MainWindow</comment>
        <translation>These settings change. Those that belong to this machine are not ticked:</translation>
    </message>
    <message>
        <source>SettingsSame</source>
        <comment>MainWindow</comment>
        <translation>All settings that can be taken from the file are as they are here.</translation>
    </message>
    <message>
        <source>SettingsRefused</source>
        <comment>MainWindow</comment>
        <translation>Not taken from the file:</translation>
    </message>
    <message>
        <source>SettingName</source>
        <comment>MainWindow</comment>
        <translation>Setting</translation>
    </message>
    <message>
        <source>SettingNow</source>
        <comment>MainWindow</comment>
        <translation>Now</translation>
    </message>
    <message>
        <source>SettingInFile</source>
        <comment>MainWindow</comment>
        <translation>In the file</translation>
    </message>
    <message>
        <source>SettingReason</source>
        <comment>MainWindow</comment>
        <translation>Why</translation>
    </message>
    <message>
        <source>SettingUnknown</source>
        <comment>MainWindow</comment>
        <translation>this version does not know it</translation>
    </message>
    <message>
        <source>SettingNotTaken</source>
        <comment>MainWindow</comment>
        <translation>it stays with its machine</translation>
    </message>
    <message>
        <source>SettingWrongType</source>
        <comment>MainWindow</comment>
        <translation>not a value of its kind</translation>
    </message>
    <message>
        <source>SettingOutOfRange</source>
        <comment>MainWindow</comment>
        <translation>not from %1 to %2</translation>
    </message>
    <message>
        <source>SettingInvalid</source>
        <comment>MainWindow</comment>
        <translation>not a value that it can have</translation>
    </message>
    <message>
        <source>InLine</source>
        <comment>MainWindow</comment>
        <translation>%1, line %2</translation>
    </message>
    <message>
        <source>SettingsNotExported</source>
        <comment>MainWindow</comment>
        <translation>The settings were not exported: %1</translation>
    </message>
    <message>
        <source>SettingsNotImported</source>
        <comment>MainWindow</comment>
        <translation>The settings were not imported, and nothing has changed: %1</translation>
    </message>
    <message>
        <source>SettingsExported</source>
        <comment>MainWindow</comment>
        <translation>The settings have been exported to %1</translation>
    </message>
    <message>
        <source>SettingsExportedLate</source>
        <comment>MainWindow</comment>
        <translation>The settings that were not waited for have been exported after all: %1</translation>
    </message>
    <message>
        <source>SettingsImported</source>
        <comment>MainWindow</comment>
        <translation>Settings imported: %1</translation>
    </message>
    <message>
        <source>SettingsOfTheProgram</source>
        <comment>MainWindow</comment>
        <translation>Program</translation>
    </message>
    <message>
        <source>SettingResourceType</source>
        <comment>MainWindow</comment>
        <translation>Kind of resource shown</translation>
    </message>
    <message>
        <source>SettingAutoSaveInterval</source>
        <comment>MainWindow</comment>
        <translation>Minutes between automatic saves</translation>
    </message>
    <message>
        <source>SettingMfps</source>
        <comment>MainWindow</comment>
        <translation>MFPS</translation>
    </message>
    <message>
        <source>SettingEfps</source>
        <comment>MainWindow</comment>
        <translation>EFPS</translation>
    </message>
    <message>
        <source>SettingGraphicsCard</source>
        <comment>MainWindow</comment>
        <translation>Graphics card</translation>
    </message>
    <message>
        <source>SettingSlideWidth</source>
        <comment>MainWindow</comment>
        <translation>Resolution: width</translation>
    </message>
    <message>
        <source>SettingSlideHeight</source>
        <comment>MainWindow</comment>
        <translation>Resolution: height</translation>
    </message>
    <message>
        <source>SettingMidiBindings</source>
        <comment>MainWindow</comment>
        <translation>MIDI shortcuts</translation>
    </message>
    <message>
        <source>SettingDmxBindings</source>
        <comment>MainWindow</comment>
        <translation>DMX shortcuts</translation>
    </message>
    <message>
        <source>SettingSdr</source>
        <comment>MainWindow</comment>
        <translation>SDR</translation>
    </message>
    <message>
        <source>SettingHdr</source>
        <comment>MainWindow</comment>
        <translation>HDR10</translation>
    </message>
    <message>
        <source>On</source>
        <comment>MainWindow</comment>
        <translation>On</translation>
    </message>
    <message>
        <source>Off</source>
        <comment>MainWindow</comment>
        <translation>Off</translation>
    </message>
    <message>
        <source>SecondsOf</source>
        <comment>MainWindow</comment>
        <translation>%1 s</translation>
    </message>
    <message>
        <source>ListSeparator</source>
        <comment>MainWindow</comment>
        <translation>, </translation>
    </message>
    <message>
        <source>Project</source>
        <comment>MainWindow</comment>
        <translation>&amp;Project</translation>
    </message>
    <message>
        <source>NewProject</source>
        <comment>MainWindow</comment>
        <translation>&amp;New</translation>
    </message>
    <message>
        <source>OpenProject</source>
        <comment>MainWindow</comment>
        <translation>&amp;Open…</translation>
    </message>
    <message>
        <source>RecentProjects</source>
        <comment>MainWindow</comment>
        <translation>Open &amp;recent</translation>
    </message>
    <message>
        <source>SaveProject</source>
        <comment>MainWindow</comment>
        <translation>&amp;Save</translation>
    </message>
    <message>
        <source>SaveProjectAs</source>
        <comment>MainWindow</comment>
        <translation>Save &amp;as…</translation>
    </message>
    <message>
        <source>ExportSettings</source>
        <comment>MainWindow</comment>
        <translation>&amp;Export settings…</translation>
    </message>
    <message>
        <source>ImportSettings</source>
        <comment>MainWindow</comment>
        <translation>&amp;Import settings…</translation>
    </message>
    <message>
        <source>Quit</source>
        <comment>MainWindow</comment>
        <translation>&amp;Quit</translation>
    </message>
    <message>
        <source>ShowWindow</source>
        <comment>MainWindow</comment>
        <translation>Show window</translation>
    </message>
    <message>
        <source>OpenProjectTitle</source>
        <comment>MainWindow</comment>
        <translation>Open project</translation>
    </message>
    <message>
        <source>SaveProjectTitle</source>
        <comment>MainWindow</comment>
        <translation>Save project</translation>
    </message>
    <message>
        <source>ProjectFiles</source>
        <comment>MainWindow</comment>
        <translation>Project files</translation>
    </message>
    <message>
        <source>UnnamedProject</source>
        <comment>MainWindow</comment>
        <translation>Unnamed project</translation>
    </message>
    <message>
        <source>Programs</source>
        <comment>MainWindow</comment>
        <translation>Programs</translation>
    </message>
    <message>
        <source>Playing</source>
        <comment>MainWindow</comment>
        <translation>Playing: %1</translation>
    </message>
    <message>
        <source>NothingPlaying</source>
        <comment>MainWindow</comment>
        <translation>Nothing is playing</translation>
    </message>
    <message>
        <source>SaveQuestion</source>
        <comment>MainWindow</comment>
        <translation>Save the changes to “%1”?</translation>
    </message>
    <message>
        <source>Save</source>
        <comment>MainWindow</comment>
        <translation>Save</translation>
    </message>
    <message>
        <source>DoNotSave</source>
        <comment>MainWindow</comment>
        <translation>Do not save</translation>
    </message>
    <message>
        <source>PutBackTo</source>
        <comment>MainWindow</comment>
        <translation>Put back to %1</translation>
    </message>
    <message>
        <source>PutBackToDefault</source>
        <comment>MainWindow</comment>
        <translation>Put back to the default</translation>
    </message>
    <message>
        <source>PutBackSection</source>
        <comment>MainWindow</comment>
        <translation>Put this section back</translation>
    </message>
    <message>
        <source>PutBackQuestion</source>
        <comment>MainWindow</comment>
        <translation>Put the section "%1" back to what a new installation has? Settings that change: %2.</translation>
    </message>
    <message>
        <source>PutBack</source>
        <comment>MainWindow</comment>
        <translation>Put back</translation>
    </message>
    <message>
        <source>PutBackNotKept</source>
        <comment>MainWindow</comment>
        <translation>Nothing was put back, because the settings could not be kept in a file first: %1</translation>
    </message>
    <message>
        <source>PutBackDone</source>
        <comment>MainWindow</comment>
        <translation>The section "%1" was put back.</translation>
    </message>
    <message>
        <source>PutBackKeptIn</source>
        <comment>MainWindow</comment>
        <translation>All settings as they were before are in %1. "Import settings…" in the menu of the main window takes them from there.</translation>
    </message>
    <message>
        <source>PutBackPartly</source>
        <comment>MainWindow</comment>
        <translation>The section "%1" was not put back as a whole: %2 of %3 settings could not be saved.</translation>
    </message>
    <message>
        <source>PutBackUndo</source>
        <comment>MainWindow</comment>
        <translation>Undo</translation>
    </message>
    <message>
        <source>PutBackClose</source>
        <comment>MainWindow</comment>
        <translation>Close</translation>
    </message>
    <message>
        <source>Cancel</source>
        <comment>MainWindow</comment>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>ProjectNotOpened</source>
        <comment>MainWindow</comment>
        <translation>The project could not be opened: %1. The open project stays.</translation>
    </message>
    <message>
        <source>ProjectNotSaved</source>
        <comment>MainWindow</comment>
        <translation>The project could not be saved: %1</translation>
    </message>
    <message>
        <source>AutomaticSaveFailed</source>
        <comment>MainWindow</comment>
        <translation>The project could not be saved automatically: %1</translation>
    </message>
    <message>
        <source>ProjectSavedLate</source>
        <comment>MainWindow</comment>
        <translation>The project that was not waited for has been saved after all: %1</translation>
    </message>
    <message>
        <source>OpeningProject</source>
        <comment>MainWindow</comment>
        <translation>Opening %1 …</translation>
    </message>
    <message>
        <source>SavingProject</source>
        <comment>MainWindow</comment>
        <translation>Saving %1 …</translation>
    </message>
    <message>
        <source>StopWaiting</source>
        <comment>MainWindow</comment>
        <translation>Do not wait</translation>
    </message>
    <message>
        <source>UnsavedFound</source>
        <comment>MainWindow</comment>
        <translation>The program ended before its project was saved. The changes were saved automatically as:

%1

Open them?</translation>
    </message>
    <message>
        <source>OpenUnsaved</source>
        <comment>MainWindow</comment>
        <translation>Open</translation>
    </message>
    <message>
        <source>LeaveUnsaved</source>
        <comment>MainWindow</comment>
        <translation>Discard the changes</translation>
    </message>
    <message>
        <source>LaterUnsaved</source>
        <comment>MainWindow</comment>
        <translation>Ask again at the next start</translation>
    </message>
    <message>
        <source>AutostartFailed</source>
        <comment>MainWindow</comment>
        <translation>The start at log-on could not be set: %1</translation>
    </message>
    <message>
        <source>PowerActionFailed</source>
        <comment>MainWindow</comment>
        <translation>The machine could not be shut down or restarted: %1</translation>
    </message>
    <message>
        <source>TimedActionCalledOff</source>
        <comment>MainWindow</comment>
        <translation>The shutdown or restart timed for %1 was called off: the machine slept through its count-down.</translation>
    </message>
    <message>
        <source>FadeTimesApplied</source>
        <comment>MainWindow</comment>
        <translation>Programs whose fade times were changed: %1</translation>
    </message>
    <message>
        <source>ProgramFades</source>
        <comment>MainWindow</comment>
        <translation>Fade in %1 s, fade out %2 s</translation>
    </message>
    <message>
        <source>Messages</source>
        <comment>MainWindow</comment>
        <translation>Messages</translation>
    </message>
    <message>
        <source>MessageTime</source>
        <comment>MainWindow</comment>
        <translation>Time</translation>
    </message>
    <message>
        <source>MessageKind</source>
        <comment>MainWindow</comment>
        <translation>Kind</translation>
    </message>
    <message>
        <source>MessageText</source>
        <comment>MainWindow</comment>
        <translation>Message</translation>
    </message>
    <message>
        <source>MessageWarning</source>
        <comment>MainWindow</comment>
        <translation>Warning</translation>
    </message>
    <message>
        <source>MessageInformation</source>
        <comment>MainWindow</comment>
        <translation>Information</translation>
    </message>
    <message>
        <source>MessageQuestion</source>
        <comment>MainWindow</comment>
        <translation>Question</translation>
    </message>
    <message>
        <source>ShowBefore</source>
        <comment>MainWindow</comment>
        <translation>Before the show</translation>
    </message>
    <message>
        <source>ShowDoors</source>
        <comment>MainWindow</comment>
        <translation>Doors open</translation>
    </message>
    <message>
        <source>ShowWelcome</source>
        <comment>MainWindow</comment>
        <translation>Welcome</translation>
    </message>
    <message>
        <source>ShowMain</source>
        <comment>MainWindow</comment>
        <translation>Show</translation>
    </message>
    <message>
        <source>ShowOpening</source>
        <comment>MainWindow</comment>
        <translation>Opening film</translation>
    </message>
    <message>
        <source>ShowInterview</source>
        <comment>MainWindow</comment>
        <translation>Interview</translation>
    </message>
    <message>
        <source>ShowMusic</source>
        <comment>MainWindow</comment>
        <translation>Live music</translation>
    </message>
    <message>
        <source>ShowFinale</source>
        <comment>MainWindow</comment>
        <translation>Finale</translation>
    </message>
    <message>
        <source>ShowAfter</source>
        <comment>MainWindow</comment>
        <translation>After the show</translation>
    </message>
    <message>
        <source>ShowThanks</source>
        <comment>MainWindow</comment>
        <translation>Thanks</translation>
    </message>
    <message>
        <source>ShowBlack</source>
        <comment>MainWindow</comment>
        <translation>Black</translation>
    </message>
    <message>
        <source>Actions</source>
        <comment>MainWindow</comment>
        <translation>Actions</translation>
    </message>
    <message>
        <source>Keys</source>
        <comment>MainWindow</comment>
        <translation>Keys</translation>
    </message>
    <message>
        <source>ShortcutKind</source>
        <comment>MainWindow</comment>
        <translation>What is being edited</translation>
    </message>
    <message>
        <source>EditShortcuts</source>
        <comment>MainWindow</comment>
        <translation>Edit shortcuts</translation>
    </message>
    <message>
        <source>ClearShortcuts</source>
        <comment>MainWindow</comment>
        <translation>Clear all</translation>
    </message>
    <message>
        <source>ClearShortcut</source>
        <comment>MainWindow</comment>
        <translation>Clear</translation>
    </message>
    <message>
        <source>ExportShortcuts</source>
        <comment>MainWindow</comment>
        <translation>Export…</translation>
    </message>
    <message>
        <source>ImportShortcuts</source>
        <comment>MainWindow</comment>
        <translation>Import…</translation>
    </message>
    <message>
        <source>LockScreen</source>
        <comment>MainWindow</comment>
        <translation>Lock</translation>
    </message>
    <message>
        <source>ShortcutFiles</source>
        <comment>MainWindow</comment>
        <translation>Shortcuts</translation>
    </message>
    <message>
        <source>ClearShortcutsQuestion</source>
        <comment>MainWindow</comment>
        <translation>Clear all bindings of this kind?</translation>
    </message>
    <message>
        <source>ImportShortcutsQuestion</source>
        <comment>MainWindow</comment>
        <translation>Replace all bindings of keys and devices by those of the file?</translation>
    </message>
    <message>
        <source>ShortcutsNotExported</source>
        <comment>MainWindow</comment>
        <translation>The shortcuts could not be written. %1</translation>
    </message>
    <message>
        <source>ShortcutsExportedLate</source>
        <comment>MainWindow</comment>
        <translation>The shortcuts that were not waited for have been exported after all.</translation>
    </message>
    <message>
        <source>ShortcutsNotImported</source>
        <comment>MainWindow</comment>
        <translation>The shortcuts were not imported: %1</translation>
    </message>
    <message>
        <source>FindAction</source>
        <comment>MainWindow</comment>
        <translation>Find an action by its name</translation>
    </message>
    <message>
        <source>NoActionMatches</source>
        <comment>MainWindow</comment>
        <translation>No action is called that.</translation>
    </message>
    <message>
        <source>FindByPressing</source>
        <comment>MainWindow</comment>
        <translation>Find by pressing</translation>
    </message>
    <message>
        <source>FindHint</source>
        <comment>MainWindow</comment>
        <translation>Press a key, move a control or send a message; Esc ends.</translation>
    </message>
    <message>
        <source>FoundAction</source>
        <comment>MainWindow</comment>
        <translation>%1 – %2</translation>
    </message>
    <message>
        <source>FoundFree</source>
        <comment>MainWindow</comment>
        <translation>%1 is free</translation>
    </message>
    <message>
        <source>FoundReserved</source>
        <comment>MainWindow</comment>
        <translation>%1 belongs to the program itself</translation>
    </message>
    <message>
        <source>BindingSheet</source>
        <comment>MainWindow</comment>
        <translation>Sheet of shortcuts</translation>
    </message>
    <message>
        <source>BoundTwice</source>
        <comment>MainWindow</comment>
        <translation>%1 is bound more than once</translation>
    </message>
    <message>
        <source>NoBindingMatches</source>
        <comment>MainWindow</comment>
        <translation>No shortcut matches the filter.</translation>
    </message>
    <message>
        <source>SheetAsPdf</source>
        <comment>MainWindow</comment>
        <translation>Save as PDF…</translation>
    </message>
    <message>
        <source>SheetAsHtml</source>
        <comment>MainWindow</comment>
        <translation>Save as HTML…</translation>
    </message>
    <message>
        <source>SheetSaved</source>
        <comment>MainWindow</comment>
        <translation>Saved to “%1”.</translation>
    </message>
    <message>
        <source>KeysPutAside</source>
        <comment>MainWindow</comment>
        <translation>The file of the keys could not be read and was put aside as “%1”. Its keys are not bound.</translation>
    </message>
    <message>
        <source>KeysNotWritten</source>
        <comment>MainWindow</comment>
        <translation>The keys could not be saved: %1. The changes hold meanwhile, and saving them is tried again.</translation>
    </message>
    <message>
        <source>KeysWritten</source>
        <comment>MainWindow</comment>
        <translation>The keys are saved again.</translation>
    </message>
    <message>
        <source>PortFailed</source>
        <comment>MainWindow</comment>
        <translation>The port is not open: %1. It is tried again.</translation>
    </message>
    <message>
        <source>PortInvalid</source>
        <comment>MainWindow</comment>
        <translation>The port is not open: %1. Choose a number from 1 on.</translation>
    </message>
    <message>
        <source>PortOpen</source>
        <comment>MainWindow</comment>
        <translation>%1 is open now.</translation>
    </message>
    <message>
        <source>OscFailed</source>
        <comment>MainWindow</comment>
        <translation>OSC does not receive: %1. It is tried again.</translation>
    </message>
    <message>
        <source>DmxFailed</source>
        <comment>MainWindow</comment>
        <translation>DMX does not receive: %1. It is tried again.</translation>
    </message>
    <message>
        <source>OscReceives</source>
        <comment>MainWindow</comment>
        <translation>OSC receives again.</translation>
    </message>
    <message>
        <source>DmxReceives</source>
        <comment>MainWindow</comment>
        <translation>DMX receives again.</translation>
    </message>
    <message>
        <source>LockedByControl</source>
        <comment>MainWindow</comment>
        <translation>The screen is locked. Only the button “Lock” in this window unlocks it.</translation>
    </message>
    <message>
        <source>LockedHint</source>
        <comment>MainWindow</comment>
        <translation>The screen is locked: keys and controllers trigger nothing until “Lock” is pressed again.</translation>
    </message>
    <message>
        <source>ListenAddress</source>
        <comment>MainWindow</comment>
        <translation>DMX and OSC listen at</translation>
    </message>
    <message>
        <source>AllAddresses</source>
        <comment>MainWindow</comment>
        <translation>All addresses</translation>
    </message>
    <message>
        <source>KeyHint</source>
        <comment>MainWindow</comment>
        <translation>Choose an action and press its keys. Backspace clears, Tab goes on, Escape ends.</translation>
    </message>
    <message>
        <source>MidiHint</source>
        <comment>MainWindow</comment>
        <translation>Choose an action and move a control. Backspace clears, Tab goes on, Escape ends.</translation>
    </message>
    <message>
        <source>MidiNoDevice</source>
        <comment>MainWindow</comment>
        <translation>No MIDI device is connected.</translation>
    </message>
    <message>
        <source>MidiHangs</source>
        <comment>MainWindow</comment>
        <translation>MIDI does not answer: a driver or a sound server hangs.</translation>
    </message>
    <message>
        <source>MidiNotOpened</source>
        <comment>MainWindow</comment>
        <translation>The MIDI device “%1” cannot be opened. Another program may have it. It is tried again.</translation>
    </message>
    <message>
        <source>MidiOff</source>
        <comment>MainWindow</comment>
        <translation>MIDI is off. It is switched on in the settings, under Network.</translation>
    </message>
    <message>
        <source>DmxHint</source>
        <comment>MainWindow</comment>
        <translation>Choose an action and move a channel up. Backspace clears, Tab goes on, Escape ends.</translation>
    </message>
    <message>
        <source>DmxOff</source>
        <comment>MainWindow</comment>
        <translation>DMX is off. It is switched on in the settings, under Network.</translation>
    </message>
    <message>
        <source>OscHint</source>
        <comment>MainWindow</comment>
        <translation>Every action has its address for good, at %1</translation>
    </message>
    <message>
        <source>OscOff</source>
        <comment>MainWindow</comment>
        <translation>OSC is off. It is switched on in the settings, under Network.</translation>
    </message>
    <message>
        <source>InputMonitor</source>
        <comment>MainWindow</comment>
        <translation>Input monitor</translation>
    </message>
    <message>
        <source>AllInputs</source>
        <comment>MainWindow</comment>
        <translation>All inputs</translation>
    </message>
    <message>
        <source>FilterInputs</source>
        <comment>MainWindow</comment>
        <translation>Filter by text</translation>
    </message>
    <message>
        <source>PauseInputs</source>
        <comment>MainWindow</comment>
        <translation>Pause</translation>
    </message>
    <message>
        <source>ClearInputs</source>
        <comment>MainWindow</comment>
        <translation>Clear</translation>
    </message>
    <message>
        <source>CopyInputs</source>
        <comment>MainWindow</comment>
        <translation>Copy</translation>
    </message>
    <message>
        <source>MonitorKind</source>
        <comment>MainWindow</comment>
        <translation>Input</translation>
    </message>
    <message>
        <source>MonitorSource</source>
        <comment>MainWindow</comment>
        <translation>From</translation>
    </message>
    <message>
        <source>MonitorWords</source>
        <comment>MainWindow</comment>
        <translation>Message</translation>
    </message>
    <message>
        <source>MonitorLevel</source>
        <comment>MainWindow</comment>
        <translation>Level</translation>
    </message>
    <message>
        <source>MonitorAction</source>
        <comment>MainWindow</comment>
        <translation>Action</translation>
    </message>
    <message>
        <source>MonitorRates</source>
        <comment>MainWindow</comment>
        <translation>A second: MIDI %1, DMX %2, OSC %3. Dropped: %4.</translation>
    </message>
    <message>
        <source>MonitorPaused</source>
        <comment>MainWindow</comment>
        <translation>Paused. A second: MIDI %1, DMX %2, OSC %3. Dropped: %4.</translation>
    </message>
    <message>
        <source>NothingCameIn</source>
        <comment>MainWindow</comment>
        <translation>Nothing has come in yet.</translation>
    </message>
    <message>
        <source>NoInputMatches</source>
        <comment>MainWindow</comment>
        <translation>Nothing that came in matches the filter.</translation>
    </message>
    <message>
        <source>BoundToNothing</source>
        <comment>MainWindow</comment>
        <translation>bound to nothing</translation>
    </message>
    <message>
        <source>ActionOfGroup</source>
        <comment>MainWindow</comment>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>ActionReleased</source>
        <comment>MainWindow</comment>
        <translation>%1 (released)</translation>
    </message>
    <message>
        <source>MidiNoteOn</source>
        <comment>MainWindow</comment>
        <translation>Note %1 on, velocity %3, channel %2</translation>
    </message>
    <message>
        <source>MidiNoteOff</source>
        <comment>MainWindow</comment>
        <translation>Note %1 off, channel %2</translation>
    </message>
    <message>
        <source>MidiProgram</source>
        <comment>MainWindow</comment>
        <translation>Program %1, channel %2</translation>
    </message>
    <message>
        <source>MidiController</source>
        <comment>MainWindow</comment>
        <translation>Controller %1: %3, channel %2</translation>
    </message>
    <message>
        <source>MidiNamedController</source>
        <comment>MainWindow</comment>
        <translation>Controller %1 (%4): %3, channel %2</translation>
    </message>
    <message>
        <source>MidiKeyPressure</source>
        <comment>MainWindow</comment>
        <translation>Pressure of note %1: %3, channel %2</translation>
    </message>
    <message>
        <source>MidiPressure</source>
        <comment>MainWindow</comment>
        <translation>Pressure: %2, channel %1</translation>
    </message>
    <message>
        <source>MidiPitchBend</source>
        <comment>MainWindow</comment>
        <translation>Pitch bend: %2, channel %1</translation>
    </message>
    <message>
        <source>OscTooLong</source>
        <comment>MainWindow</comment>
        <translation>%2 (%1 bytes, too long to be shown)</translation>
    </message>
    <message>
        <source>OscNone</source>
        <comment>MainWindow</comment>
        <translation>No message of OSC (%1 bytes)</translation>
    </message>
    <message>
        <source>DmxPoll</source>
        <comment>MainWindow</comment>
        <translation>Asks which nodes there are</translation>
    </message>
    <message>
        <source>DmxNone</source>
        <comment>MainWindow</comment>
        <translation>Neither levels nor a poll (%1 bytes)</translation>
    </message>
    <message>
        <source>DmxAllZero</source>
        <comment>MainWindow</comment>
        <translation>Universe %1: %2 channels, all at 0</translation>
    </message>
    <message>
        <source>DmxLevel</source>
        <comment>MainWindow</comment>
        <translation>Universe %1, channel %2: %3</translation>
    </message>
    <message>
        <source>DmxLevels</source>
        <comment>MainWindow</comment>
        <translation>Universe %1, channel %2: %3, and %4 more channels</translation>
    </message>
    <message>
        <source>Controller/0</source>
        <comment>MainWindow</comment>
        <translation>bank</translation>
    </message>
    <message>
        <source>Controller/1</source>
        <comment>MainWindow</comment>
        <translation>modulation</translation>
    </message>
    <message>
        <source>Controller/2</source>
        <comment>MainWindow</comment>
        <translation>breath</translation>
    </message>
    <message>
        <source>Controller/4</source>
        <comment>MainWindow</comment>
        <translation>foot pedal</translation>
    </message>
    <message>
        <source>Controller/5</source>
        <comment>MainWindow</comment>
        <translation>portamento time</translation>
    </message>
    <message>
        <source>Controller/6</source>
        <comment>MainWindow</comment>
        <translation>data entry</translation>
    </message>
    <message>
        <source>Controller/7</source>
        <comment>MainWindow</comment>
        <translation>volume</translation>
    </message>
    <message>
        <source>Controller/8</source>
        <comment>MainWindow</comment>
        <translation>balance</translation>
    </message>
    <message>
        <source>Controller/10</source>
        <comment>MainWindow</comment>
        <translation>pan</translation>
    </message>
    <message>
        <source>Controller/11</source>
        <comment>MainWindow</comment>
        <translation>expression</translation>
    </message>
    <message>
        <source>Controller/64</source>
        <comment>MainWindow</comment>
        <translation>sustain pedal</translation>
    </message>
    <message>
        <source>Controller/65</source>
        <comment>MainWindow</comment>
        <translation>portamento</translation>
    </message>
    <message>
        <source>Controller/66</source>
        <comment>MainWindow</comment>
        <translation>sostenuto pedal</translation>
    </message>
    <message>
        <source>Controller/67</source>
        <comment>MainWindow</comment>
        <translation>soft pedal</translation>
    </message>
    <message>
        <source>Controller/71</source>
        <comment>MainWindow</comment>
        <translation>resonance</translation>
    </message>
    <message>
        <source>Controller/72</source>
        <comment>MainWindow</comment>
        <translation>release time</translation>
    </message>
    <message>
        <source>Controller/73</source>
        <comment>MainWindow</comment>
        <translation>attack time</translation>
    </message>
    <message>
        <source>Controller/74</source>
        <comment>MainWindow</comment>
        <translation>brightness</translation>
    </message>
    <message>
        <source>Controller/91</source>
        <comment>MainWindow</comment>
        <translation>reverb</translation>
    </message>
    <message>
        <source>Controller/93</source>
        <comment>MainWindow</comment>
        <translation>chorus</translation>
    </message>
    <message>
        <source>Controller/120</source>
        <comment>MainWindow</comment>
        <translation>all sound off</translation>
    </message>
    <message>
        <source>Controller/121</source>
        <comment>MainWindow</comment>
        <translation>reset controllers</translation>
    </message>
    <message>
        <source>Controller/122</source>
        <comment>MainWindow</comment>
        <translation>local control</translation>
    </message>
    <message>
        <source>Controller/123</source>
        <comment>MainWindow</comment>
        <translation>all notes off</translation>
    </message>
    <message>
        <source>Controller/124</source>
        <comment>MainWindow</comment>
        <translation>omni off</translation>
    </message>
    <message>
        <source>Controller/125</source>
        <comment>MainWindow</comment>
        <translation>omni on</translation>
    </message>
    <message>
        <source>Controller/126</source>
        <comment>MainWindow</comment>
        <translation>mono</translation>
    </message>
    <message>
        <source>Controller/127</source>
        <comment>MainWindow</comment>
        <translation>poly</translation>
    </message>
    <message>
        <source>Global/</source>
        <comment>MainWindow</comment>
        <translation>Global</translation>
    </message>
    <message>
        <source>Global/OutputSwitch</source>
        <comment>MainWindow</comment>
        <translation>Output on/off</translation>
    </message>
    <message>
        <source>Global/FTBSwitch</source>
        <comment>MainWindow</comment>
        <translation>Fade to black</translation>
    </message>
    <message>
        <source>Global/MuteSwitch</source>
        <comment>MainWindow</comment>
        <translation>Mute</translation>
    </message>
    <message>
        <source>Global/TestImgSwitch</source>
        <comment>MainWindow</comment>
        <translation>Test picture</translation>
    </message>
    <message>
        <source>Stage/</source>
        <comment>MainWindow</comment>
        <translation>Stage</translation>
    </message>
    <message>
        <source>Stage/MonitorLock</source>
        <comment>MainWindow</comment>
        <translation>Lock view</translation>
    </message>
    <message>
        <source>Stage/MonitorGrap</source>
        <comment>MainWindow</comment>
        <translation>Drag view</translation>
    </message>
    <message>
        <source>Stage/MonitorFill</source>
        <comment>MainWindow</comment>
        <translation>Fill view</translation>
    </message>
    <message>
        <source>Stage/MonitorOrigin</source>
        <comment>MainWindow</comment>
        <translation>Original size</translation>
    </message>
    <message>
        <source>Stage/MonitorZoomIn</source>
        <comment>MainWindow</comment>
        <translation>Zoom in</translation>
    </message>
    <message>
        <source>Stage/MonitorZoomOut</source>
        <comment>MainWindow</comment>
        <translation>Zoom out</translation>
    </message>
    <message>
        <source>Stage/MonitorDisplay</source>
        <comment>MainWindow</comment>
        <translation>Show view</translation>
    </message>
    <message>
        <source>Stage/Cut</source>
        <comment>MainWindow</comment>
        <translation>Cut</translation>
    </message>
    <message>
        <source>Stage/Take</source>
        <comment>MainWindow</comment>
        <translation>Take</translation>
    </message>
    <message>
        <source>Program/</source>
        <comment>MainWindow</comment>
        <translation>Programs</translation>
    </message>
    <message>
        <source>Program/ProgramLayoutKeep</source>
        <comment>MainWindow</comment>
        <translation>Keep layout</translation>
    </message>
    <message>
        <source>Program/ClearAllMedia</source>
        <comment>MainWindow</comment>
        <translation>Clear media</translation>
    </message>
    <message>
        <source>Program/LocateToOrigin</source>
        <comment>MainWindow</comment>
        <translation>Go to start</translation>
    </message>
    <message>
        <source>Program/LocateToCurProgram</source>
        <comment>MainWindow</comment>
        <translation>Go to current</translation>
    </message>
    <message>
        <source>Program/AddProgram</source>
        <comment>MainWindow</comment>
        <translation>Add program</translation>
    </message>
    <message>
        <source>Progress/</source>
        <comment>MainWindow</comment>
        <translation>Progress</translation>
    </message>
    <message>
        <source>Progress/ProgressStop</source>
        <comment>MainWindow</comment>
        <translation>Stop</translation>
    </message>
    <message>
        <source>Progress/Positiving</source>
        <comment>MainWindow</comment>
        <translation>Count up</translation>
    </message>
    <message>
        <source>Progress/CountDown</source>
        <comment>MainWindow</comment>
        <translation>Count down</translation>
    </message>
    <message>
        <source>Progress/Sync</source>
        <comment>MainWindow</comment>
        <translation>Synchronise</translation>
    </message>
    <message>
        <source>Progress/PlayPause</source>
        <comment>MainWindow</comment>
        <translation>Play / pause</translation>
    </message>
    <message>
        <source>Toolbar/</source>
        <comment>MainWindow</comment>
        <translation>Toolbar</translation>
    </message>
    <message>
        <source>Toolbar/NewFile</source>
        <comment>MainWindow</comment>
        <translation>New file</translation>
    </message>
    <message>
        <source>Toolbar/SaveFile</source>
        <comment>MainWindow</comment>
        <translation>Save file</translation>
    </message>
    <message>
        <source>Toolbar/PackageFile</source>
        <comment>MainWindow</comment>
        <translation>Package file</translation>
    </message>
    <message>
        <source>Toolbar/RecoveryLayout</source>
        <comment>MainWindow</comment>
        <translation>Restore layout</translation>
    </message>
    <message>
        <source>Toolbar/SaveLayout</source>
        <comment>MainWindow</comment>
        <translation>Save layout</translation>
    </message>
    <message>
        <source>Toolbar/LayoutManager</source>
        <comment>MainWindow</comment>
        <translation>Layouts</translation>
    </message>
    <message>
        <source>Toolbar/OutputManager</source>
        <comment>MainWindow</comment>
        <translation>Outputs</translation>
    </message>
    <message>
        <source>Toolbar/3DEdit</source>
        <comment>MainWindow</comment>
        <translation>3D editor</translation>
    </message>
    <message>
        <source>Toolbar/OpenPageTurning</source>
        <comment>MainWindow</comment>
        <translation>Page turning</translation>
    </message>
    <message>
        <source>Toolbar/LockScreen</source>
        <comment>MainWindow</comment>
        <translation>Lock screen</translation>
    </message>
    <message>
        <source>ProgramProperty/</source>
        <comment>MainWindow</comment>
        <translation>Program</translation>
    </message>
    <message>
        <source>ProgramProperty/ProgramUpInsert</source>
        <comment>MainWindow</comment>
        <translation>Insert above</translation>
    </message>
    <message>
        <source>ProgramProperty/ProgramDownInsert</source>
        <comment>MainWindow</comment>
        <translation>Insert below</translation>
    </message>
    <message>
        <source>ProgramProperty/ProgramDelete</source>
        <comment>MainWindow</comment>
        <translation>Delete</translation>
    </message>
    <message>
        <source>LayerProperty/</source>
        <comment>MainWindow</comment>
        <translation>Layer</translation>
    </message>
    <message>
        <source>LayerProperty/LayerUpInsert</source>
        <comment>MainWindow</comment>
        <translation>Insert above</translation>
    </message>
    <message>
        <source>LayerProperty/LayerDownInsert</source>
        <comment>MainWindow</comment>
        <translation>Insert below</translation>
    </message>
    <message>
        <source>LayerProperty/LayerDelete</source>
        <comment>MainWindow</comment>
        <translation>Delete</translation>
    </message>
    <message>
        <source>LayerProperty/LayerClearBtn</source>
        <comment>MainWindow</comment>
        <translation>Clear</translation>
    </message>
    <message>
        <source>MediaProperty/</source>
        <comment>MainWindow</comment>
        <translation>Media</translation>
    </message>
    <message>
        <source>MediaProperty/MediaPlayback</source>
        <comment>MainWindow</comment>
        <translation>Play</translation>
    </message>
    <message>
        <source>MediaProperty/MediaLastFrame</source>
        <comment>MainWindow</comment>
        <translation>Last frame</translation>
    </message>
    <message>
        <source>MediaProperty/MediaStopPlay</source>
        <comment>MainWindow</comment>
        <translation>Stop</translation>
    </message>
    <message>
        <source>MediaProperty/CycleIndex</source>
        <comment>MainWindow</comment>
        <translation>Loops</translation>
    </message>
    <message>
        <source>MediaProperty/MediaNoJump</source>
        <comment>MainWindow</comment>
        <translation>Do not jump</translation>
    </message>
    <message>
        <source>MediaProperty/MediaProgramLoop</source>
        <comment>MainWindow</comment>
        <translation>Loop program</translation>
    </message>
    <message>
        <source>MediaProperty/MediaNext</source>
        <comment>MainWindow</comment>
        <translation>Next</translation>
    </message>
    <message>
        <source>no answer in time</source>
        <comment>Reason</comment>
        <translation>no answer in time</translation>
    </message>
    <message>
        <source>an answer without end</source>
        <comment>Reason</comment>
        <translation>an answer without end</translation>
    </message>
    <message>
        <source>the server has ended the watch</source>
        <comment>Reason</comment>
        <translation>the server has ended the watch</translation>
    </message>
    <message>
        <source>a report of the watch has no end</source>
        <comment>Reason</comment>
        <translation>a report of the watch has no end</translation>
    </message>
    <message>
        <source>database or disk is full</source>
        <comment>Reason</comment>
        <translation>the disk is full</translation>
    </message>
    <message>
        <source>unless the show takes the change, which was sent to it</source>
        <comment>Reason</comment>
        <translation>unless the show takes the change, which was sent to it</translation>
    </message>
    <message>
        <source>attempt to write a readonly database</source>
        <comment>Reason</comment>
        <translation>the settings file is read-only</translation>
    </message>
    <message>
        <source>disk I/O error</source>
        <comment>Reason</comment>
        <translation>the disk cannot be read or written</translation>
    </message>
    <message>
        <source>unable to open database file</source>
        <comment>Reason</comment>
        <translation>the settings file cannot be opened</translation>
    </message>
    <message>
        <source>database is locked</source>
        <comment>Reason</comment>
        <translation>the settings file is in use</translation>
    </message>
    <message>
        <source>Permission denied</source>
        <comment>Reason</comment>
        <translation>no permission</translation>
    </message>
    <message>
        <source>Too many open files</source>
        <comment>Reason</comment>
        <translation>too many files are open</translation>
    </message>
    <message>
        <source>No such file or directory</source>
        <comment>Reason</comment>
        <translation>there is no such file or folder</translation>
    </message>
    <message>
        <source>No space left on device</source>
        <comment>Reason</comment>
        <translation>the disk is full</translation>
    </message>
    <message>
        <source>the machine has slept</source>
        <comment>Reason</comment>
        <translation>the machine has slept</translation>
    </message>
    <message>
        <source>everything is read again</source>
        <comment>Reason</comment>
        <translation>everything is read again</translation>
    </message>
    <message>
        <source>more settings than a show may have</source>
        <comment>Reason</comment>
        <translation>more settings than a show may have</translation>
    </message>
    <message>
        <source>the answer is not one of etcd</source>
        <comment>Reason</comment>
        <translation>the answer is not one of etcd</translation>
    </message>
    <message>
        <source>Connection refused</source>
        <comment>Reason</comment>
        <translation>Connection refused</translation>
    </message>
    <message>
        <source>Network unreachable</source>
        <comment>Reason</comment>
        <translation>Network unreachable</translation>
    </message>
    <message>
        <source>Host unreachable</source>
        <comment>Reason</comment>
        <translation>Host unreachable</translation>
    </message>
    <message>
        <source>Host not found</source>
        <comment>Reason</comment>
        <translation>Host not found</translation>
    </message>
    <message>
        <source>Connection closed</source>
        <comment>Reason</comment>
        <translation>Connection closed</translation>
    </message>
    <message>
        <source>Connection timed out</source>
        <comment>Reason</comment>
        <translation>no answer in time</translation>
    </message>
    <message>
        <source>Socket operation timed out</source>
        <comment>Reason</comment>
        <translation>no answer in time</translation>
    </message>
    <message>
        <source>SSL handshake failed</source>
        <comment>Reason</comment>
        <translation>no encrypted connection came about</translation>
    </message>
    <message>
        <source>The issuer certificate could not be found</source>
        <comment>Reason</comment>
        <translation>The issuer certificate could not be found</translation>
    </message>
    <message>
        <source>The issuer certificate of a locally looked up certificate could not be found</source>
        <comment>Reason</comment>
        <translation>The issuer certificate of a locally looked up certificate could not be found</translation>
    </message>
    <message>
        <source>No certificates could be verified</source>
        <comment>Reason</comment>
        <translation>No certificates could be verified</translation>
    </message>
    <message>
        <source>The signature of the certificate is invalid</source>
        <comment>Reason</comment>
        <translation>The signature of the certificate is invalid</translation>
    </message>
    <message>
        <source>The certificate is not yet valid</source>
        <comment>Reason</comment>
        <translation>The certificate is not yet valid</translation>
    </message>
    <message>
        <source>The certificate has expired</source>
        <comment>Reason</comment>
        <translation>The certificate has expired</translation>
    </message>
    <message>
        <source>The certificate is self-signed, and untrusted</source>
        <comment>Reason</comment>
        <translation>The certificate is self-signed, and untrusted</translation>
    </message>
    <message>
        <source>The root certificate of the certificate chain is self-signed, and untrusted</source>
        <comment>Reason</comment>
        <translation>The root certificate of the certificate chain is self-signed, and untrusted</translation>
    </message>
    <message>
        <source>One of the CA certificates is invalid</source>
        <comment>Reason</comment>
        <translation>One of the CA certificates is invalid</translation>
    </message>
    <message>
        <source>The supplied certificate is unsuitable for this purpose</source>
        <comment>Reason</comment>
        <translation>The supplied certificate is unsuitable for this purpose</translation>
    </message>
    <message>
        <source>The root CA certificate is not trusted for this purpose</source>
        <comment>Reason</comment>
        <translation>The root CA certificate is not trusted for this purpose</translation>
    </message>
    <message>
        <source>The peer did not present any certificate</source>
        <comment>Reason</comment>
        <translation>The peer did not present any certificate</translation>
    </message>
    <message>
        <source>The host name did not match any of the valid hosts for this certificate</source>
        <comment>Reason</comment>
        <translation>The host name did not match any of the valid hosts for this certificate</translation>
    </message>
    <message>
        <source>etcdserver: permission denied</source>
        <comment>Reason</comment>
        <translation>the user of etcd may not do this</translation>
    </message>
    <message>
        <source>etcdserver: authentication failed, invalid user ID or password</source>
        <comment>Reason</comment>
        <translation>etcd takes no such user and password</translation>
    </message>
    <message>
        <source>etcdserver: user name is empty</source>
        <comment>Reason</comment>
        <translation>etcd demands a user and a password</translation>
    </message>
    <message>
        <source>etcdserver: mvcc: database space exceeded</source>
        <comment>Reason</comment>
        <translation>the space of etcd is used up</translation>
    </message>
    <message>
        <source>etcdserver: no leader</source>
        <comment>Reason</comment>
        <translation>the servers of etcd have no leader</translation>
    </message>
    <message>
        <source>etcdserver: leader changed</source>
        <comment>Reason</comment>
        <translation>the servers of etcd change their leader</translation>
    </message>
    <message>
        <source>etcdserver: request timed out</source>
        <comment>Reason</comment>
        <translation>no answer in time</translation>
    </message>
    <message>
        <source>0 is no port</source>
        <comment>Reason</comment>
        <translation>0 is no port</translation>
    </message>
    <message>
        <source>The bound address is already in use</source>
        <comment>Reason</comment>
        <translation>another program uses it</translation>
    </message>
    <message>
        <source>The address is protected</source>
        <comment>Reason</comment>
        <translation>this user may not open it</translation>
    </message>
    <message>
        <source>The address is not available</source>
        <comment>Reason</comment>
        <translation>this machine does not have that address</translation>
    </message>
    <message>
        <source>a program has no id of its own</source>
        <comment>Reason</comment>
        <translation>a program has no id of its own</translation>
    </message>
    <message>
        <source>no such folder</source>
        <comment>Reason</comment>
        <translation>no such folder</translation>
    </message>
    <message>
        <source>systemctl did not say why</source>
        <comment>Reason</comment>
        <translation>systemctl did not say why</translation>
    </message>
    <message>
        <source>no answer</source>
        <comment>Reason</comment>
        <translation>no answer</translation>
    </message>
    <message>
        <source>a file is still being opened or saved</source>
        <comment>Reason</comment>
        <translation>a file is still being opened or saved</translation>
    </message>
    <message>
        <source>the open project has been changed meanwhile</source>
        <comment>Reason</comment>
        <translation>the open project has been changed meanwhile</translation>
    </message>
    <message>
        <source>not a project file</source>
        <comment>Reason</comment>
        <translation>not a project file</translation>
    </message>
    <message>
        <source>the file is too large</source>
        <comment>Reason</comment>
        <translation>the file is too large</translation>
    </message>
    <message>
        <source>not a settings file</source>
        <comment>Reason</comment>
        <translation>not a settings file</translation>
    </message>
    <message>
        <source>not a shortcut file</source>
        <comment>Reason</comment>
        <translation>not a shortcut file</translation>
    </message>
    <message>
        <source>no id of a machine is in it</source>
        <comment>Reason</comment>
        <translation>no id of a machine is in it</translation>
    </message>
    <message>
        <source>no certificate (PEM) is in it</source>
        <comment>Reason</comment>
        <translation>no certificate (PEM) is in it</translation>
    </message>
    <message>
        <source>only with --store etcd://...</source>
        <comment>Reason</comment>
        <translation>only with --store etcd://...</translation>
    </message>
    <message>
        <source>--store takes a file, or etcd://HOST[:PORT][,HOST[:PORT]...]/SHOW</source>
        <comment>Reason</comment>
        <translation>--store takes a file, or etcd://HOST[:PORT][,HOST[:PORT]...]/SHOW</translation>
    </message>
    <message>
        <source>the bindings could not be saved; the old ones stay</source>
        <comment>Reason</comment>
        <translation>the bindings could not be saved; the old ones stay</translation>
    </message>
    <message>
        <source>too many settings, or the name of one is too long</source>
        <comment>Reason</comment>
        <translation>too many settings, or the name of one is too long</translation>
    </message>
    <message>
        <source>too many programs or groups</source>
        <comment>Reason</comment>
        <translation>too many programs or groups</translation>
    </message>
    <message>
        <source>a setting is there twice</source>
        <comment>Reason</comment>
        <translation>a setting is there twice</translation>
    </message>
    <message>
        <source>too deeply nested</source>
        <comment>Reason</comment>
        <translation>too deeply nested</translation>
    </message>
    <message>
        <source>switched off in the system's list of startup apps</source>
        <comment>Reason</comment>
        <translation>switched off in the system's list of startup apps</translation>
    </message>
    <message>
        <source>no right to write to it</source>
        <comment>Reason</comment>
        <translation>no right to write to it</translation>
    </message>
    <message>
        <source>the file is cut off</source>
        <comment>Reason</comment>
        <translation>the file is cut off</translation>
    </message>
    <message>
        <source>the file is empty</source>
        <comment>Reason</comment>
        <translation>the file is empty</translation>
    </message>
    <message>
        <source>the file is missing</source>
        <comment>Reason</comment>
        <translation>the file is missing</translation>
    </message>
    <message>
        <source>the file was replaced or removed</source>
        <comment>Reason</comment>
        <translation>the file was replaced or removed</translation>
    </message>
    <message>
        <source>written by a later version</source>
        <comment>Reason</comment>
        <translation>written by a later version</translation>
    </message>
    <message>
        <source>file is not a database</source>
        <comment>Reason</comment>
        <translation>it is no settings file, or a damaged one</translation>
    </message>
    <message>
        <source>database disk image is malformed</source>
        <comment>Reason</comment>
        <translation>the settings file is damaged</translation>
    </message>
    <message>
        <source>Read-only file system</source>
        <comment>Reason</comment>
        <translation>the disk is read-only</translation>
    </message>
    <message>
        <source>Is a directory</source>
        <comment>Reason</comment>
        <translation>it is a folder</translation>
    </message>
    <message>
        <source>file to open is a directory</source>
        <comment>Reason</comment>
        <translation>it is a folder</translation>
    </message>
    <message>
        <source>Not a directory</source>
        <comment>Reason</comment>
        <translation>a part of the path is no folder</translation>
    </message>
    <message>
        <source>File name too long</source>
        <comment>Reason</comment>
        <translation>the name is too long</translation>
    </message>
    <message>
        <source>Disk quota exceeded</source>
        <comment>Reason</comment>
        <translation>the disk quota is used up</translation>
    </message>
    <message>
        <source>Input/output error</source>
        <comment>Reason</comment>
        <translation>the disk cannot be read or written</translation>
    </message>
    <message>
        <source>Operation not permitted</source>
        <comment>Reason</comment>
        <translation>no permission</translation>
    </message>
    <message>
        <source>no network card has this address</source>
        <comment>Reason</comment>
        <translation>no network card has this address</translation>
    </message>
    <message>
        <source>not a project file, or a damaged one</source>
        <comment>Reason</comment>
        <translation>not a project file, or a damaged one</translation>
    </message>
    <message>
        <source>it goes by the settings without --store</source>
        <comment>Reason</comment>
        <translation>it goes by the settings without --store</translation>
    </message>
    <message>
        <source>the path is too long</source>
        <comment>Reason</comment>
        <translation>the path is too long</translation>
    </message>
    <message>
        <source>the file that is there cannot be replaced</source>
        <comment>Reason</comment>
        <translation>the file that is there cannot be replaced</translation>
    </message>
    <message>
        <source>what was set elsewhere is no value of it</source>
        <comment>Reason</comment>
        <translation>what was set elsewhere is no value of it</translation>
    </message>
</context>
</TS>
