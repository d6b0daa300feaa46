@echo off
rem Makes a folder "demo" of invented models, textures and animations, makes it the game folder, and opens a unit of it.
cd /d "%~dp0"
echo Making the demo data in the folder "demo"...
korvane-cli.exe demo-data demo >nul
if errorlevel 1 goto failed
korvane-cli.exe --config config.cfg config add data_paths "%~dp0demo\"
if errorlevel 1 goto failed
start "" Korvane.exe pack:variantmeshes/variantmeshdefinitions/demo_guard.variantmeshdefinition
exit /b 0
:failed
pause
exit /b 1
