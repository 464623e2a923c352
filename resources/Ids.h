/* Identifiers of resources, menu commands and controls: design values shared by the resource scripts
 * and the code. Plain defines only, since the resource compiler reads them too. */
#ifndef TAVRIX_RESOURCES_IDS_H
#define TAVRIX_RESOURCES_IDS_H

/* Resources. */
#define AcceleratorTable 3
#define DialogAboutEnglish 102
#define DialogProgress 105
#define DialogResolutionEnglish 106
#define DialogImageInformation 109
#define DialogFile 110
#define MenuEnglish 110
#define DialogResolutionJapanese 111
#define MenuJapanese 111
#define DialogSizeEnglish 113
#define DialogSizeJapanese 114
#define DialogLettersEnglish 115
#define DialogLettersJapanese 116
#define IconApplication 115
#define IconParentFolder 116
#define IconFolder 117
#define IconFile 118
#define IconFileProperty 119
#define DialogBrushJapanese 118
#define DialogBrushEnglish 119
#define DialogColorsJapanese 120
#define DialogColorsEnglish 121
#define BinaryMarkers 124
#define DialogToolbox 128
#define BitmapToolboxTitle 130
#define BinaryTools 135
#define BitmapToolSettings 138
#define DialogNewJapanese 141
#define DialogNewEnglish 142
#define DialogColorbox 143
#define BitmapColorboxTitle 145
#define DialogPluginInformation 164
#define IconPlugin 165
#define DialogPaletteJapanese 168
#define DialogPaletteEnglish 169
#define DialogPrintJapanese 171
#define DialogPrintEnglish 172
#define DialogClipboardJapanese 173
#define DialogClipboardEnglish 174
#define DialogUrlJapanese 175
#define DialogUrlEnglish 176
#define DialogAboutJapanese 177

/* Controls of the progress dialog. */
#define ControlAbort 3
#define ControlProgressBar 1000
#define ControlProgressStatus 1002
#define ControlHeadline 1004

/* Controls of the plugin information dialog. Its headline has the progress dialog's number. */
#define ControlPluginClose 2
#define ControlPluginTree 1080
#define ControlPluginList 1081
#define ControlPluginDescription 1083

/* Controls of the file dialog. Its title has the progress dialog's headline's number. */
#define ControlFileList 1001
#define ControlFileName 1002
#define ControlFileFilter 1003

/* Controls of the small dialogs about the picture and the program. */
#define ControlInformationList 1006
#define ControlAboutAddress 1007
#define ControlPaletteState 1085
#define ControlPaletteRefresh 1086

/* Control of the dialog for an address. */
#define ControlUrl 1087

/* Controls of the dialogs about a picture's size: New, Size and Resolution. */
#define ControlWidth 1005
#define ControlHeight 1006
#define ControlHeightUnit 1012
#define ControlWidthUnit 1014
#define ControlScalePlugin 1010
#define ControlKeepAspect 1013
#define ControlMode 1050
#define ControlWhite 1066
#define ControlBlack 1067
#define ControlTransparent 1068
#define ControlAnchorUpper 1025
#define ControlAnchorLower 1057
#define ControlAnchorCenter 1058
#define ControlAnchorLeft 1059
#define ControlAnchorRight 1060
#define ControlAnchorUpperLeft 1061
#define ControlAnchorUpperRight 1062
#define ControlAnchorLowerLeft 1063
#define ControlAnchorLowerRight 1064
#define ControlAnchorName 1065

/* Controls of the dialog for letters. */
#define ControlLettersFont 1029
#define ControlLettersSize 1033
#define ControlLettersUnit 1034
#define ControlLettersText 1035
#define ControlLettersNoBreak 1036

/* Controls of the dialog for the clipboard's format. */
#define ControlClipboardFormat 1110
#define ControlClipboardDescription 1112

/* Controls of the print dialog. */
#define ControlPrintConfigure 1106
#define ControlPrintDither 1107
#define ControlPrintStatus 1108
#define ControlPrintStretch 1109

/* Controls of the toolbox and the colorbox. */
#define ControlToolTitle 1048
#define ControlToolSettings 1049
#define ControlBackgroundSwatch 1052
#define ControlFaceSwatch 1053

/* Controls of the brush settings. */
#define ControlBrushRedo 3
#define ControlBrushStrength 1053
#define ControlBrushRadius 1054
#define ControlBrushDiffusion 1055
#define ControlBrushPreview 1079

/* Controls of the colour chooser. */
#define ControlColorRedo 3
#define ControlColorSwatch 1037
#define ControlColorRgb 1070
#define ControlColorHsb 1071
#define ControlColorCmyk 1072
#define ControlRedNumber 1073
#define ControlGreenNumber 1074
#define ControlBlueNumber 1075
#define ControlRedBar 1200
#define ControlGreenBar 1201
#define ControlBlueBar 1202

/* The command bar's own id. */
#define ControlCommandBar 1

/* Menu: Info, Help. */
#define CommandImageInformation 205
#define CommandAbout 207
#define CommandPaletteInformation 40060
#define CommandPluginsInfo 40068

/* Menu: File. */
#define CommandExit 40002
#define CommandOpenFile 40003
#define CommandSave 40004
#define CommandNew 40017
#define CommandVirtualSave 40184
#define CommandOpenUrl 40197
#define CommandOpenIrObex 40202

/* Entries that stand in for an empty list of plugins. */
#define CommandNoEffectPlugin 40009
#define CommandNoAdjustPlugin 40010
#define CommandNoFilePlugin 40014
#define CommandNoScalePlugin 40016

/* The entries of plugins: the first of each menu, and how many a menu takes. */
#define CommandFirstOpenAs 41000
#define CommandFirstSaveAs 41100
#define CommandFirstEffect 41200
#define CommandFirstAdjust 41300
#define CommandFirstScale 41400
#define CommandPrintFirst 41500 /* the first plugin; no entry carries it */
#define CommandFirstPrint 41501
#define PluginMenuLimit 100

/* Menu: Edit. */
#define CommandCopyToMemory 40036
#define CommandPasteFromMemory 40037
#define CommandSelectAll 40056
#define CommandReverseSelection 40073
#define CommandDeselect 40074
#define CommandClearMemory 40159
#define CommandClearClipboard 40193
#define CommandCopyToClipboard 40194
#define CommandPasteFromClipboard 40195
#define CommandUndo 40205

/* Menu: Tools. */
#define CommandText 40030
#define CommandSelectRound 40095
#define CommandSelectRectangle 40105
#define CommandSelectEllipse 40106
#define CommandSelectFreePass 40107
#define CommandBrush 40119
#define CommandAirbrush 40120
#define CommandSolidPenJapanese 40121
#define CommandSoftPen 40122
#define CommandUserPen 40123
#define CommandSolidPen 40124
#define CommandScroll 40125
#define CommandColorEraser 40126
#define CommandAlphaEraser 40129
#define CommandUserEraser 40130
#define CommandAdjustBrush 40151
#define CommandEffectBrush 40152
#define CommandLine 40154
#define CommandRectangle 40155
#define CommandRound 40156
#define CommandEllipse 40157
#define CommandCurve 40158
#define CommandSelectPoint 40160
#define CommandPipette 40161
#define CommandSelectSmoothing 40162
#define CommandSelectPointJapanese 40163
#define CommandLaunchViewer 40201

/* Menu: Image. */
#define CommandResolution 40005
#define CommandSize 40006
#define CommandReloadOpened 40007
#define CommandSubtract 40008
#define CommandRotate180 40045
#define CommandRotateClockwise 40047
#define CommandRotateCounterClockwise 40048
#define CommandReverseHorizontal 40050
#define CommandReverseVertical 40051
#define CommandModeRgb 40064
#define CommandModeRgba 40065
#define CommandModeIndex 40066
#define CommandMainLayer 40178
#define CommandTextLayer 40179
#define CommandNewLayer 40180
#define CommandDeleteLayer 40181
#define CommandReloadSaved 40185

/* Menu: Display. */
#define CommandInitializeView 40012
#define CommandMethodBuiltIn 40015
#define CommandZoom100 40018
#define CommandZoomWindow 40020
#define CommandZoom200 40022
#define CommandZoom400 40023
#define CommandZoom50 40024
#define CommandZoom25 40025
#define CommandZoom75 40026
#define CommandRotation90 40040
#define CommandRotation0 40041
#define CommandRotation180 40042
#define CommandRotation270 40043
#define CommandCentering 40063
#define CommandZoom300 40115
#define CommandToolboxWindow 40118
#define CommandDitherRandom 40137
#define CommandDitherOnEnglish 40138 /* no command stands behind it; the check mark is 40164's */
#define CommandColors4 40142
#define CommandColors16 40143
#define CommandColors256 40144
#define CommandColors1024 40145
#define CommandColors32768 40146
#define CommandColors65536 40147
#define CommandDitherBayer 40149
#define CommandColorboxWindow 40153
#define CommandDitherOn 40164
#define CommandScreenColor 40203
#define CommandScreenMono 40204

/* Keys only. */
#define CommandScrollLeft 40165
#define CommandScrollRight 40166
#define CommandScrollUp 40167
#define CommandScrollDown 40168
#define CommandNothingPrint 40192
#define CommandNothingQuit 1

#endif
