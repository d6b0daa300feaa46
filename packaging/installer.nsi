; The installer: for one person, into a folder that he may write to, for settings stand beside the program. It never asks
; for an administrator's rights. packaging/build calls it with VERSION, FILES (the folder that is packed), SIDE (a picture)
; and OUTPUT.
;
; Silently: /S, /D=FOLDER (as the last), /PATH (the console program is found from anywhere), /FILES (double clicks open
; models and definitions). The uninstaller keeps settings unless it is told otherwise; silently /SETTINGS removes them.

Unicode true
Target amd64-unicode
SetCompressor /SOLID lzma
RequestExecutionLevel user
ManifestDPIAware true
Name "Korvane ${VERSION}"
OutFile "${OUTPUT}"
InstallDir "$LOCALAPPDATA\Programs\Korvane"
InstallDirRegKey HKCU "Software\Korvane" "folder"
BrandingText "Korvane ${VERSION}"

!include "MUI2.nsh"
!include "FileFunc.nsh"
!include "LogicLib.nsh"
!include "StrFunc.nsh"
!include "WinMessages.nsh"
${StrStr}
${UnStrRep}

!define UNINSTALL "Software\Microsoft\Windows\CurrentVersion\Uninstall\Korvane"
!define CLASSES "Software\Classes"

!define MUI_ICON "${ICON}"
!define MUI_UNICON "${ICON}"
!define MUI_ABORTWARNING
!define MUI_WELCOMEFINISHPAGE_BITMAP "${SIDE}"
!define MUI_COMPONENTSPAGE_SMALLDESC
!define MUI_FINISHPAGE_RUN "$INSTDIR\Korvane.exe"
!define MUI_FINISHPAGE_SHOWREADME "$INSTDIR\guide.html"
!define MUI_FINISHPAGE_SHOWREADME_TEXT "Show the guide"
!define MUI_FINISHPAGE_SHOWREADME_NOTCHECKED
!insertmacro MUI_PAGE_LICENSE "${FILES}/LICENSE.txt"
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_COMPONENTS
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "English"

VIAddVersionKey "ProductName" "Korvane"
VIAddVersionKey "FileDescription" "Korvane installer"
VIAddVersionKey "FileVersion" "${VERSION}"
VIAddVersionKey "ProductVersion" "${VERSION}"
VIAddVersionKey "CompanyName" "Korvane contributors"
VIAddVersionKey "LegalCopyright" "Korvane contributors, MIT licence"
VIProductVersion "${NUMBERS}.0"

Section "Korvane" program
  SectionIn RO
  SetOutPath "$INSTDIR"
  ; A copy that runs cannot be replaced; nothing is written before that is known.
  ${If} ${FileExists} "$INSTDIR\Korvane.exe"
    ClearErrors
    FileOpen $0 "$INSTDIR\Korvane.exe" a
    ${If} ${Errors}
      MessageBox MB_OK|MB_ICONEXCLAMATION "Korvane is running in this folder. Close it and try again." /SD IDOK
      SetErrorLevel 2
      Quit
    ${EndIf}
    FileClose $0
  ${EndIf}
  File /r "${FILES}/*"
  WriteRegStr HKCU "Software\Korvane" "folder" "$INSTDIR"
  WriteUninstaller "$INSTDIR\uninstall.exe"
  WriteRegStr HKCU "${UNINSTALL}" "DisplayName" "Korvane"
  WriteRegStr HKCU "${UNINSTALL}" "DisplayVersion" "${VERSION}"
  WriteRegStr HKCU "${UNINSTALL}" "Publisher" "Korvane contributors"
  WriteRegStr HKCU "${UNINSTALL}" "DisplayIcon" "$INSTDIR\Korvane.exe"
  WriteRegStr HKCU "${UNINSTALL}" "UninstallString" '"$INSTDIR\uninstall.exe"'
  WriteRegStr HKCU "${UNINSTALL}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /S'
  WriteRegDWORD HKCU "${UNINSTALL}" "NoModify" 1
  WriteRegDWORD HKCU "${UNINSTALL}" "NoRepair" 1
  ${GetSize} "$INSTDIR" "/S=0K" $0 $1 $2
  WriteRegDWORD HKCU "${UNINSTALL}" "EstimatedSize" $0
SectionEnd

Section "Start menu" menu
  CreateDirectory "$SMPROGRAMS\Korvane"
  CreateShortcut "$SMPROGRAMS\Korvane\Korvane.lnk" "$INSTDIR\Korvane.exe"
  CreateShortcut "$SMPROGRAMS\Korvane\Korvane Guide.lnk" "$INSTDIR\guide.html"
SectionEnd

Section /o "Double clicks open models and definitions" associations
  !macro associate ENDING DESCRIPTION
    WriteRegStr HKCU "${CLASSES}\Korvane${ENDING}" "" "${DESCRIPTION}"
    WriteRegStr HKCU "${CLASSES}\Korvane${ENDING}\DefaultIcon" "" "$INSTDIR\Korvane.exe,0"
    WriteRegStr HKCU "${CLASSES}\Korvane${ENDING}\shell\open\command" "" '"$INSTDIR\Korvane.exe" "%1"'
    WriteRegStr HKCU "${CLASSES}\${ENDING}\OpenWithProgids" "Korvane${ENDING}" ""
    WriteRegStr HKCU "${CLASSES}\${ENDING}" "" "Korvane${ENDING}"
  !macroend
  !insertmacro associate ".rigid_model_v2" "3D model"
  !insertmacro associate ".variantmeshdefinition" "Variant mesh definition"
  System::Call 'shell32::SHChangeNotify(i 0x08000000, i 0, p 0, p 0)'
SectionEnd

Section /o "Console program on the PATH" path
  ; A text that is longer than this program's can hold is left alone: it would lose its end.
  ClearErrors
  ReadRegStr $0 HKCU "Environment" "Path"
  StrLen $1 "$0;$INSTDIR"
  ${If} $1 > 1000
    DetailPrint "PATH is too long to be changed here: add $INSTDIR by hand."
  ${Else}
    ${StrStr} $2 ";$0;" ";$INSTDIR;"
    ${If} $2 == ""
      ${If} $0 == ""
        WriteRegExpandStr HKCU "Environment" "Path" "$INSTDIR"
      ${Else}
        WriteRegExpandStr HKCU "Environment" "Path" "$0;$INSTDIR"
      ${EndIf}
      SendMessage ${HWND_BROADCAST} ${WM_SETTINGCHANGE} 0 "STR:Environment" /TIMEOUT=2000
    ${EndIf}
  ${EndIf}
SectionEnd

!insertmacro MUI_FUNCTION_DESCRIPTION_BEGIN
  !insertmacro MUI_DESCRIPTION_TEXT ${program} "The program, its console twin and the guide."
  !insertmacro MUI_DESCRIPTION_TEXT ${menu} "The program and its guide, in the start menu."
  !insertmacro MUI_DESCRIPTION_TEXT ${associations} "For .rigid_model_v2 and .variantmeshdefinition."
  !insertmacro MUI_DESCRIPTION_TEXT ${path} "korvane-cli is found from any folder of a console."
!insertmacro MUI_FUNCTION_DESCRIPTION_END

Function .onInit
  ${GetParameters} $0
  ClearErrors
  ${GetOptions} $0 "/PATH" $1
  ${IfNot} ${Errors}
    !insertmacro SelectSection ${path}
  ${EndIf}
  ClearErrors
  ${GetOptions} $0 "/FILES" $1
  ${IfNot} ${Errors}
    !insertmacro SelectSection ${associations}
  ${EndIf}
FunctionEnd

Section "Uninstall"
  ; What was installed, file by file: the folder may hold what the person put there.
  !include "${LIST}"
  Delete "$INSTDIR\uninstall.exe"
  Delete "$SMPROGRAMS\Korvane\Korvane.lnk"
  Delete "$SMPROGRAMS\Korvane\Korvane Guide.lnk"
  RMDir "$SMPROGRAMS\Korvane"
  StrCpy $1 ""
  ${GetParameters} $0
  ClearErrors
  ${GetOptions} $0 "/SETTINGS" $2
  ${IfNot} ${Errors}
    StrCpy $1 "remove"
  ${ElseIf} ${FileExists} "$INSTDIR\config.cfg"
    MessageBox MB_YESNO|MB_ICONQUESTION|MB_DEFBUTTON2 "Remove the settings, too (folders, recent files, places of windows)?" /SD IDNO IDNO +2
    StrCpy $1 "remove"
  ${EndIf}
  ${If} $1 == "remove"
    Delete "$INSTDIR\config.cfg"
    Delete "$INSTDIR\config.cfg.lock"
  ${EndIf}
  Delete "$INSTDIR\log.txt"
  Delete "$INSTDIR\guide_place.html"
  Delete "$INSTDIR\packs.cache"
  Delete "$INSTDIR\usage.cache"
  RMDir "$INSTDIR" ; only when nothing is left in it
  !macro dissociate ENDING
    ReadRegStr $3 HKCU "${CLASSES}\${ENDING}" ""
    ${If} $3 == "Korvane${ENDING}"
      DeleteRegValue HKCU "${CLASSES}\${ENDING}" ""
    ${EndIf}
    DeleteRegValue HKCU "${CLASSES}\${ENDING}\OpenWithProgids" "Korvane${ENDING}"
    DeleteRegKey /ifempty HKCU "${CLASSES}\${ENDING}\OpenWithProgids"
    DeleteRegKey /ifempty HKCU "${CLASSES}\${ENDING}"
    DeleteRegKey HKCU "${CLASSES}\Korvane${ENDING}"
  !macroend
  !insertmacro dissociate ".rigid_model_v2"
  !insertmacro dissociate ".variantmeshdefinition"
  ReadRegStr $0 HKCU "Environment" "Path"
  StrLen $1 $0
  ${If} $1 > 0
  ${AndIf} $1 < 1000
    ${UnStrRep} $2 ";$0;" ";$INSTDIR;" ";"
    ${If} $2 != ";$0;"
      StrCpy $2 $2 "" 1
      StrLen $3 $2
      ${If} $3 > 0
        StrCpy $2 $2 -1
      ${EndIf}
      ${If} $2 == ""
        DeleteRegValue HKCU "Environment" "Path"
      ${Else}
        WriteRegExpandStr HKCU "Environment" "Path" "$2"
      ${EndIf}
      SendMessage ${HWND_BROADCAST} ${WM_SETTINGCHANGE} 0 "STR:Environment" /TIMEOUT=2000
    ${EndIf}
  ${EndIf}
  DeleteRegKey HKCU "${UNINSTALL}"
  DeleteRegKey HKCU "Software\Korvane"
SectionEnd
