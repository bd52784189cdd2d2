<#
.SYNOPSIS
    Says why the Corvane SNMP agent answers, or why it does not.

.DESCRIPTION
    Climbs the ladder from Windows' SNMP service to the agent's link with the Corvane
    software, and prints one verdict a line:

        [ok]    as it should be
        [warn]  works, but look at it
        [FAIL]  this is why; the text says what to do
        [skip]  could not be looked at, with the reason

    It only reads: services, registry, event log, files and the list of connections.
    It asks nothing by SNMP, since Windows has no command for that. Run it as an
    administrator on the server itself; without those rights it skips what it may
    not see.

    For Windows PowerShell 4 and later, and PowerShell 7. It was written where no
    PowerShell was to be had and has not been run; what it relies on is in
    Microsoft's documents, and the texts and numbers that it looks for are
    checked against the agent by the agent's own tests.

.PARAMETER LogFolder
    The agent's log folder, if it is not the usual one.

.OUTPUTS
    One line of text for each rung. The exit code is the number of failures.

.EXAMPLE
    powershell -ExecutionPolicy Bypass -File Test-CorvaneAgent.ps1
#>
[CmdletBinding()]
param(
    [string] $LogFolder = ($env:ProgramData + '\Veltrin Systems\Corvane\SNMP\Logs')
)

Set-StrictMode -Version 2
$ErrorActionPreference = 'Stop'

$LinkPort = 16969
$AgentsKey = 'SYSTEM\CurrentControlSet\Services\SNMP\Parameters\ExtensionAgents'
$ServiceKey = 'SYSTEM\CurrentControlSet\Services\SNMP'
$AgentKey = 'SOFTWARE\Veltrin Systems\Corvane SNMP\CurrentVersion'

# Lines of the agent's log.
$Started = 'Info: Extension agent started!'
$Ended = 'Info: Terminating SNMP extension agent..'
$Connected = 'Info: Connection to Corvane process established..'
$Lost = 'Warning: Lost connection to Corvane process!'
$Updated = 'Info: SNMP variables successfully updated'

$script:Failures = 0

function Write-Verdict([string] $State, [string] $Rung, [string] $Text) {
    if ($State -eq 'FAIL') { $script:Failures += 1 }
    Write-Output ('{0,-7} {1,-11} {2}' -f "[$State]", $Rung, $Text)
}

# The service is a 64-bit program, this may be a 32-bit PowerShell: name the view.
# Gives nothing when the key is not there.
function Open-MachineKey([string] $Name, [string] $View) {
    $base = [Microsoft.Win32.RegistryKey]::OpenBaseKey(
        [Microsoft.Win32.RegistryHive]::LocalMachine, [Microsoft.Win32.RegistryView]$View)
    $base.OpenSubKey($Name, $false)
}

# The machine type in the header of an image, or 0 when it is none.
function Get-ImageMachine([string] $Path) {
    $stream = New-Object System.IO.FileStream($Path, [System.IO.FileMode]::Open,
        [System.IO.FileAccess]::Read, [System.IO.FileShare]::ReadWrite)
    try {
        $bytes = New-Object byte[] 4096
        $length = $stream.Read($bytes, 0, $bytes.Length)
    }
    finally {
        $stream.Dispose()
    }
    if ($length -lt 64 -or $bytes[0] -ne 0x4D -or $bytes[1] -ne 0x5A) { return 0 }
    $header = [BitConverter]::ToInt32($bytes, 0x3C)
    if ($header -lt 0 -or $header + 6 -gt $length) { return 0 }
    return [BitConverter]::ToUInt16($bytes, $header + 4)
}

# The last line of the log that holds one of the texts: File, Number, Line; nothing
# when no kept file holds one. The newest file is searched first.
function Get-LastLogLine([object[]] $Files, [string[]] $Texts) {
    foreach ($file in $Files) {
        $hit = Select-String -LiteralPath $file.FullName -Pattern $Texts -SimpleMatch |
            Select-Object -Last 1
        if ($null -ne $hit) { return $hit }
    }
}

# When a line that Get-LastLogLine found was written: the day is in the file's name.
function Get-LineTime($Hit) {
    $text = $Hit.Filename.Substring(3, 10) + ' ' + $Hit.Line.Substring(0, 8)
    return [DateTime]::ParseExact($text, 'yyyy-MM-dd HH:mm:ss', [Globalization.CultureInfo]::InvariantCulture)
}

# --- 1: the service -----------------------------------------------------------

$serviceProcess = 0
$serviceStart = (Get-Date).AddDays(-1)
$startIsKnown = $false
$service = Get-Service -Name SNMP -ErrorAction SilentlyContinue
if ($null -eq $service) {
    Write-Verdict 'FAIL' '1 service' 'The SNMP Service is not installed. It is an optional feature of Windows.'
}
elseif ($service.Status -ne 'Running') {
    $key = Open-MachineKey $ServiceKey 'Registry64'
    $how = 'net start SNMP'
    if ($null -ne $key -and $key.GetValue('Start', 0) -eq 4) { $how = 'it is disabled; set its start type to automatic first' }
    Write-Verdict 'FAIL' '1 service' "The SNMP Service is not running ($($service.Status)): $how."
}
else {
    $details = Get-CimInstance -ClassName Win32_Service -Filter "Name='SNMP'"
    $serviceProcess = [int] $details.ProcessId
    try {
        $serviceStart = (Get-Process -Id $serviceProcess).StartTime
        $startIsKnown = $true
        Write-Verdict 'ok' '1 service' "Running as $($details.StartName), process $serviceProcess, since $serviceStart."
    }
    catch {
        Write-Verdict 'ok' '1 service' "Running as $($details.StartName), process $serviceProcess."
    }
}

# --- 2: the service's list of agents ------------------------------------------

$names = @()
$key = Open-MachineKey $AgentsKey 'Registry64'
if ($null -ne $key) {
    $names = @($key.GetValueNames() | Where-Object { "$($key.GetValue($_))".Trim('\') -eq $AgentKey })
}
if ($names.Count -eq 1) {
    Write-Verdict 'ok' '2 key' "HKLM\$AgentsKey names the agent (value $($names[0]))."
}
elseif ($names.Count -gt 1) {
    Write-Verdict 'warn' '2 key' "The agent is registered $($names.Count) times ($($names -join ', ')): delete all but one."
}
else {
    Write-Verdict 'FAIL' '2 key' "No value of HKLM\$AgentsKey is '$AgentKey': install the package."
}

# --- 3 and 4: the agent's key and file ----------------------------------------

$path = ''
$key = Open-MachineKey $AgentKey 'Registry64'
if ($null -ne $key) { $path = "$($key.GetValue('Pathname', ''))" }
if ($path -ne '') {
    Write-Verdict 'ok' '3 path' $path
}
elseif ($null -ne (Open-MachineKey $AgentKey 'Registry32')) {
    Write-Verdict 'FAIL' '3 path' 'The key is in the 32-bit view only, where the service does not look: install the x64 package.'
}
else {
    Write-Verdict 'FAIL' '3 path' "HKLM\$AgentKey has no value Pathname: install the package again."
}

if ($path -eq '') {
    Write-Verdict 'skip' '4 file' 'No path.'
}
elseif (Test-Path -LiteralPath $path -PathType Leaf) {
    $file = Get-Item -LiteralPath $path
    Write-Verdict 'ok' '4 file' "Version $($file.VersionInfo.FileVersion), $($file.Length) bytes."
}
else {
    Write-Verdict 'FAIL' '4 file' 'There is no such file: install the package again; look into the virus scanner''s quarantine.'
    $path = ''
}

# --- 5: bitness, and whether the service has the file in hand -----------------

if ($path -eq '') {
    Write-Verdict 'skip' '5 bitness' 'No file.'
}
else {
    try {
        $machine = Get-ImageMachine $path
        if ($machine -eq 0x8664) {
            Write-Verdict 'ok' '5 bitness' 'A 64-bit image, as the service is.'
        }
        else {
            Write-Verdict 'FAIL' '5 bitness' ('No 64-bit image for x64 (machine 0x{0:X4}): install the x64 package.' -f $machine)
        }
    }
    catch {
        Write-Verdict 'skip' '5 bitness' "The file cannot be read: $($_.Exception.Message)"
    }
}

if ($serviceProcess -ne 0 -and $path -ne '') {
    try {
        $modules = @((Get-Process -Id $serviceProcess).Modules | ForEach-Object { $_.FileName })
        if ($modules -contains $path) {
            Write-Verdict 'ok' '5 loaded' 'The service has loaded it.'
        }
        else {
            Write-Verdict 'FAIL' '5 loaded' 'The service has not loaded it: restart the service, then see rung 6.'
        }
    }
    catch {
        Write-Verdict 'skip' '5 loaded' 'Only an administrator, in a 64-bit PowerShell, sees what the service has loaded.'
    }
}

# --- 6: what the service says in the event log --------------------------------

try {
    $filter = New-Object System.Collections.Hashtable
    $filter['LogName'] = @('System', 'Application')
    $filter['ProviderName'] = 'SNMP'
    $filter['Level'] = @(1, 2, 3)
    $filter['StartTime'] = $serviceStart.AddMinutes(-1)
    $events = @(Get-WinEvent -FilterHashtable $filter -ErrorAction SilentlyContinue)
    if ($events.Count -eq 0) {
        Write-Verdict 'ok' '6 event log' "No error of the source SNMP since $serviceStart."
    }
    foreach ($event_ in $events | Select-Object -First 3) {
        $text = "$($event_.Message)".Split("`n")[0].Trim()
        Write-Verdict 'warn' '6 event log' "$($event_.TimeCreated), event $($event_.Id): $text"
    }
}
catch {
    Write-Verdict 'skip' '6 event log' "Cannot be read: $($_.Exception.Message)"
}

# --- 7: the agent's log -------------------------------------------------------

$files = @()
if (Test-Path -LiteralPath $LogFolder -PathType Container) {
    $files = @(Get-ChildItem -LiteralPath $LogFolder -Filter 'Log*.log' | Sort-Object -Property Name -Descending)
}
$running = $false
if ($files.Count -eq 0) {
    Write-Verdict 'FAIL' '7 agent log' "No log in $LogFolder : the agent was never loaded, or may not write there."
}
else {
    $last = Get-LastLogLine $files @($Started, $Ended)
    if ($null -eq $last) {
        $running = $true
        Write-Verdict 'warn' '7 agent log' "Neither a start nor an end in $($files.Count) file(s); the newest was written $($files[0].LastWriteTime)."
    }
    elseif ($last.Line.Contains($Started) -and $startIsKnown -and
        (Get-LineTime $last) -lt $serviceStart.AddSeconds(-5)) {
        Write-Verdict 'FAIL' '7 agent log' "Not loaded since the service's start; the last time was $(Get-LineTime $last)."
    }
    elseif ($last.Line.Contains($Started)) {
        $running = $true
        Write-Verdict 'ok' '7 agent log' "Started: $($last.Filename), $($last.Line)"
    }
    else {
        Write-Verdict 'FAIL' '7 agent log' "Ended and not started again: $($last.Filename), $($last.Line)"
    }
    $errors = @(Select-String -LiteralPath $files[0].FullName -Pattern ': Error: ' -SimpleMatch)
    if ($errors.Count -gt 0) {
        Write-Verdict 'warn' '7 agent log' "$($errors.Count) error(s) in $($files[0].Name), the last: $($errors[-1].Line)"
    }
}

# --- 8: the link --------------------------------------------------------------

if ($null -eq (Get-Command -Name Get-NetTCPConnection -ErrorAction SilentlyContinue)) {
    Write-Verdict 'skip' '8 port' "No Get-NetTCPConnection here; see: netstat -ano | findstr :$LinkPort"
}
else {
    $listeners = @(Get-NetTCPConnection -State Listen -LocalPort $LinkPort -ErrorAction SilentlyContinue)
    if ($listeners.Count -eq 0) {
        Write-Verdict 'FAIL' '8 port' "Nobody listens on TCP port $LinkPort : start the Corvane software."
    }
    else {
        $owner = Get-Process -Id $listeners[0].OwningProcess -ErrorAction SilentlyContinue
        $ownerName = 'an unknown program'
        if ($null -ne $owner) { $ownerName = $owner.ProcessName }
        Write-Verdict 'ok' '8 port' "$ownerName (process $($listeners[0].OwningProcess)) listens on TCP port $LinkPort; is it the Corvane software?"
    }
}

if (-not $running) {
    Write-Verdict 'skip' '8 link' 'The agent does not run.'
}
else {
    $link = Get-LastLogLine $files @($Started, $Connected, $Lost)
    if ($null -eq $link) {
        Write-Verdict 'warn' '8 link' 'The kept files do not tell; ask for corvaneLinkStatus.'
    }
    elseif ($link.Line.Contains($Connected)) {
        Write-Verdict 'ok' '8 link' "$($link.Filename), $($link.Line)"
        $update = Get-LastLogLine $files @($Connected, $Updated)
        if ($update.Line.Contains($Updated)) {
            Write-Verdict 'ok' '8 values' "$($update.Filename), $($update.Line)"
        }
        else {
            Write-Verdict 'warn' '8 values' 'No values since the connection. They take 15 seconds; later: what listens on the port does not answer.'
        }
    }
    else {
        Write-Verdict 'FAIL' '8 link' "No link: $($link.Filename), $($link.Line)"
    }
}

exit $script:Failures
