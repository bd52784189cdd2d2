@echo off
rem Runs the tests of the Corvane SNMP agent on this machine. rehearse.cmd /? describes it.
if not exist "%~dp0rehearse.exe" echo rehearse: rehearse.exe is missing. Unpack the whole zip first.& exit /b 1
"%~dp0rehearse.exe" %*
