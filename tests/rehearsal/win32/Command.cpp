#include "tests/rehearsal/win32/Command.h"

#include <cstdio>

namespace Rehearsal {
namespace {

constexpr DWORD kFirstErrorOfWindows = 0xC0000000;  // of a crash, for example

// A handle that a started program inherits.
HANDLE Open(const wchar_t* path, DWORD access, DWORD disposition) {
  SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
  return CreateFileW(path, access, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited, disposition,
                     FILE_ATTRIBUTE_NORMAL, nullptr);
}

// Processes in the job end when its handle is closed.
HANDLE CreateJob() {
  const HANDLE job = CreateJobObjectW(nullptr, nullptr);
  JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
  limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
  SetInformationJobObject(job, JobObjectExtendedLimitInformation, &limits, sizeof limits);
  return job;
}

}  // namespace

std::string Ending::Text() const {
  if (kind == Kind::kTookTooLong) return "did not end in time";
  if (kind == Kind::kNotStarted) return "does not start, Windows error " + std::to_string(code);
  std::string text = "exit status " + std::to_string(code);
  if (code >= kFirstErrorOfWindows) {
    char hexadecimal[16];
    static_cast<void>(std::snprintf(hexadecimal, sizeof hexadecimal, " (0x%08lX)", code));
    text += hexadecimal;
  }
  return text;
}

Command::Command(std::wstring line, const std::filesystem::path& folder,
                 const std::filesystem::path& output)
    : m_job(CreateJob()) {
  STARTUPINFOW start{};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdInput = Open(L"NUL", GENERIC_READ, OPEN_EXISTING);
  start.hStdOutput = Open(output.c_str(), FILE_APPEND_DATA, OPEN_ALWAYS);
  start.hStdError = start.hStdOutput;
  if (CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, CREATE_SUSPENDED, nullptr,
                     folder.c_str(), &start, &m_process)) {
    AssignProcessToJobObject(m_job, m_process.hProcess);
    ResumeThread(m_process.hThread);
  } else {
    m_error = GetLastError();
  }
  CloseHandle(start.hStdInput);
  CloseHandle(start.hStdOutput);
}

Command::~Command() {
  TerminateJobObject(m_job, 1);
  if (m_process.hProcess != nullptr) {
    WaitForSingleObject(m_process.hProcess, INFINITE);
    CloseHandle(m_process.hThread);
    CloseHandle(m_process.hProcess);
  }
  CloseHandle(m_job);
}

Ending Command::WaitForEnd(std::chrono::milliseconds limit) {
  if (m_error != ERROR_SUCCESS) return {Ending::Kind::kNotStarted, m_error};
  if (WaitForSingleObject(m_process.hProcess, static_cast<DWORD>(limit.count())) != WAIT_OBJECT_0) {
    TerminateJobObject(m_job, 1);
    return {Ending::Kind::kTookTooLong, 0};
  }
  DWORD status = 0;
  GetExitCodeProcess(m_process.hProcess, &status);
  return {Ending::Kind::kExited, status};
}

Ending Run(const std::wstring& line, const std::filesystem::path& folder,
           const std::filesystem::path& output, std::chrono::milliseconds limit) {
  return Command(line, folder, output).WaitForEnd(limit);
}

std::wstring InQuotes(const std::filesystem::path& path) {
  return L'"' + path.wstring() + L'"';
}

}  // namespace Rehearsal
