; Setup of the fourteen programs for a Windows field computer.
; Built by tools/make_installer.py, which passes these symbols:
;   PRODUCT_VERSION  version of the delivery ("2.28.2584")
;   BIN_DIR          folder of the fourteen built programs
;   PROGRAM_LIST     generated list of the programs (one ${Program} line each)
;   ICON             the programs' icon
;   OUT_FILE         the setup program to write
;
; An installation puts the chosen programs into one folder, makes each chosen
; program's settings folder and the shared Temp folder under
; C:\ProgramData\Ostrel with Modify rights for the computer's ordinary users
; (field computers are shared), adds a Start-menu shortcut per program and
; registers the uninstaller. The uninstaller removes programs and shortcuts
; only: settings files and data files stay where they are.

Unicode true
Target amd64-unicode
SetCompressor /SOLID lzma
RequestExecutionLevel admin

!include "MUI2.nsh"
!include "LogicLib.nsh"

!define PRODUCT "Kelvo and Lum"
!define COMPANY "Ostrel"
!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\Ostrel Kelvo and Lum"
; The programs name this path literally, on drive C: whatever the system drive.
!define SETTINGS_ROOT "C:\ProgramData\Ostrel"
!define MENU_FOLDER "$SMPROGRAMS\Ostrel"
; SYSTEM and Administrators full control, Users read, write and delete; all
; inherited by the files the programs write into the folder.
!define SHARED_FOLDER_SDDL "D:P(A;OICI;FA;;;SY)(A;OICI;FA;;;BA)(A;OICI;0x1301bf;;;BU)"

Name "${PRODUCT} ${PRODUCT_VERSION}"
OutFile "${OUT_FILE}"
InstallDir "$PROGRAMFILES64\Ostrel"
InstallDirRegKey HKLM "${UNINSTALL_KEY}" "InstallLocation"
BrandingText "${COMPANY} ${PRODUCT} ${PRODUCT_VERSION}"

VIProductVersion "${PRODUCT_VERSION}.0"
VIAddVersionKey /LANG=1033 "ProductName" "${PRODUCT}"
VIAddVersionKey /LANG=1033 "CompanyName" "${COMPANY}"
VIAddVersionKey /LANG=1033 "FileDescription" "${PRODUCT} setup"
VIAddVersionKey /LANG=1033 "FileVersion" "${PRODUCT_VERSION}"
VIAddVersionKey /LANG=1033 "ProductVersion" "${PRODUCT_VERSION}"
VIAddVersionKey /LANG=1033 "LegalCopyright" "${COMPANY}"

!define MUI_ICON "${ICON}"
!define MUI_UNICON "${ICON}"
!define MUI_ABORTWARNING
!define MUI_COMPONENTSPAGE_SMALLDESC
!define MUI_COMPONENTSPAGE_TEXT_TOP "Choose the programs for your instruments. Kelvo programs map the readings in colour; Lum programs show the positions only."
!define MUI_PAGE_CUSTOMFUNCTION_SHOW ComponentsShown
!insertmacro MUI_PAGE_COMPONENTS
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!define MUI_UNCONFIRMPAGE_TEXT_TOP "The programs and their Start-menu shortcuts will be removed. Settings in ${SETTINGS_ROOT} and your data files stay where they are."
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "English"

InstType "All fourteen programs"
InstType "Mapping programs (Kelvo)"
InstType "Navigation programs (Lum)"

Var SharedFolder

; Shortcuts for every user of the computer.
Function .onInit
  SetShellVarContext all
FunctionEnd

Function un.onInit
  SetShellVarContext all
FunctionEnd

; The list opens at its first instrument: posted, since the list scrolls on
; after this page's show step.
Function ComponentsShown
  FindWindow $0 "#32770" "" $HWNDPARENT
  GetDlgItem $1 $0 1032
  System::Call 'user32::PostMessageW(p r1, i ${WM_VSCROLL}, p 6, p 0)'  ; SB_TOP
FunctionEnd

; Makes $SharedFolder (with its parents) and gives the computer's users the
; right to write into it.
Function MakeSharedFolder
  CreateDirectory "$SharedFolder"
  System::Call 'advapi32::ConvertStringSecurityDescriptorToSecurityDescriptorW(w "${SHARED_FOLDER_SDDL}", i 1, *p .r1, p 0) i .r0'
  ${If} $0 <> 0
    System::Call 'advapi32::SetFileSecurityW(w "$SharedFolder", i 4, p r1) i .r0'
    System::Call 'kernel32::LocalFree(p r1)'
  ${EndIf}
FunctionEnd

; ------------------------------------------------------------------ install
Section "-Shared" SecShared
  SetOutPath "$INSTDIR"
  WriteUninstaller "$INSTDIR\uninstall.exe"
  StrCpy $SharedFolder "${SETTINGS_ROOT}\Temp"
  Call MakeSharedFolder
SectionEnd

!macro InstrumentGroup INSTRUMENT ID
  SectionGroup /e "${INSTRUMENT}" ${ID}
!macroend

!macro InstrumentGroupEnd
  SectionGroupEnd
!macroend

; One program: its file, its settings folder, its shortcut. Mapping programs
; belong to install types 1 and 2, navigation programs to 1 and 3.
!macro InstallProgram ID NAME VERSION FOLDER INSTRUMENT PRODUCT
  !if ${PRODUCT} == 0
    Section "${NAME} (mapping)" ${ID}
      SectionIn 1 2
  !else
    Section "${NAME} (navigation)" ${ID}
      SectionIn 1 3
  !endif
    SetOutPath "$INSTDIR"
    File "${BIN_DIR}/${NAME}.exe"
    StrCpy $SharedFolder "${SETTINGS_ROOT}\${FOLDER}"
    Call MakeSharedFolder
    CreateDirectory "${MENU_FOLDER}"
    CreateShortcut "${MENU_FOLDER}\${NAME}.lnk" "$INSTDIR\${NAME}.exe"
  SectionEnd
!macroend

!define Instrument "!insertmacro InstrumentGroup"
!define InstrumentEnd "!insertmacro InstrumentGroupEnd"
!define Program "!insertmacro InstallProgram"
!include "${PROGRAM_LIST}"
!undef Instrument
!undef InstrumentEnd
!undef Program

Section "-Register" SecRegister
  WriteRegStr HKLM "${UNINSTALL_KEY}" "DisplayName" "${PRODUCT}"
  WriteRegStr HKLM "${UNINSTALL_KEY}" "DisplayVersion" "${PRODUCT_VERSION}"
  WriteRegStr HKLM "${UNINSTALL_KEY}" "Publisher" "${COMPANY}"
  WriteRegStr HKLM "${UNINSTALL_KEY}" "DisplayIcon" "$INSTDIR\uninstall.exe"
  WriteRegStr HKLM "${UNINSTALL_KEY}" "InstallLocation" "$INSTDIR"
  WriteRegStr HKLM "${UNINSTALL_KEY}" "UninstallString" '"$INSTDIR\uninstall.exe"'
  WriteRegStr HKLM "${UNINSTALL_KEY}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /S'
  WriteRegDWORD HKLM "${UNINSTALL_KEY}" "NoModify" 1
  WriteRegDWORD HKLM "${UNINSTALL_KEY}" "NoRepair" 1
SectionEnd

; ------------------------------------------------------------------ component page texts
!macro DescribeGroup INSTRUMENT ID
  !insertmacro MUI_DESCRIPTION_TEXT ${${ID}} "Programs for the ${INSTRUMENT}."
!macroend

!macro DescribeProgram ID NAME VERSION FOLDER INSTRUMENT PRODUCT
  !if ${PRODUCT} == 0
    !insertmacro MUI_DESCRIPTION_TEXT ${${ID}} "${NAME} ${VERSION}: colour map for the ${INSTRUMENT}; settings in ${SETTINGS_ROOT}\${FOLDER}"
  !else
    !insertmacro MUI_DESCRIPTION_TEXT ${${ID}} "${NAME} ${VERSION}: positions for the ${INSTRUMENT}; settings in ${SETTINGS_ROOT}\${FOLDER}"
  !endif
!macroend

!macro Nothing
!macroend

!insertmacro MUI_FUNCTION_DESCRIPTION_BEGIN
  !define Instrument "!insertmacro DescribeGroup"
  !define InstrumentEnd "!insertmacro Nothing"
  !define Program "!insertmacro DescribeProgram"
  !include "${PROGRAM_LIST}"
  !undef Instrument
  !undef InstrumentEnd
  !undef Program
!insertmacro MUI_FUNCTION_DESCRIPTION_END

; ------------------------------------------------------------------ uninstall
!macro RemoveProgram ID NAME VERSION FOLDER INSTRUMENT PRODUCT
  Delete "$INSTDIR\${NAME}.exe"
  Delete "${MENU_FOLDER}\${NAME}.lnk"
!macroend

!macro IgnoreGroup INSTRUMENT ID
!macroend

Section "Uninstall"
  !define Instrument "!insertmacro IgnoreGroup"
  !define InstrumentEnd "!insertmacro Nothing"
  !define Program "!insertmacro RemoveProgram"
  !include "${PROGRAM_LIST}"
  !undef Instrument
  !undef InstrumentEnd
  !undef Program
  RMDir "${MENU_FOLDER}"
  Delete "$INSTDIR\uninstall.exe"
  ; Only when empty: an operator's data files may lie in the folder.
  RMDir "$INSTDIR"
  DeleteRegKey HKLM "${UNINSTALL_KEY}"
  ; Nothing under ${SETTINGS_ROOT} is touched: the settings stay for the next installation.
SectionEnd
