@echo off
rem Makes a folder "demo" of invented models, textures and animations, makes it the game folder, and opens a unit of it.
cd /d "%~dp0"
korvane-cli.exe demo-data demo || (pause & exit /b 1)
korvane-cli.exe --config config.cfg config add data_paths "%~dp0demo\"
start "" Korvane.exe pack:variantmeshes/variantmeshdefinitions/demo_guard.variantmeshdefinition
