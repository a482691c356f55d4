#include "tests/unit/capture.h"
#include "tests/harness_text.h"

#include <fcntl.h>
#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

CaptureBlock::CaptureBlock(int32_t bufferSize) {
  cb_ = (ExitControlBlock *)calloc(1, sizeof(ExitControlBlock) + (size_t)bufferSize + 1);
  memcpy(cb_->EyeCatcher, CONTROL_BLOCK_EYE_CATCHER, sizeof CONTROL_BLOCK_EYE_CATCHER);
  SetDefaultParameterSettings(&cb_->Settings);
  cb_->Settings.WriteCache = 1;
  cb_->Settings.WriteStream = 0;
  cb_->Settings.WriteInterval = 0;
  cb_->Settings.WriteAfterEachApi = 0;
  cb_->Settings.WriteBufferSize = bufferSize;
  cb_->WriteBufferSize = bufferSize;
  cb_->WriteBufferFill = 0;
  cb_->File.RotationPermitted = 0;
  cb_->File.CurrentFileSize = 0;
  cb_->ExitType = EXIT_TYPE_API;
  cb_->Identity.ProcessId = kProcessId;
  cb_->Identity.ThreadId = kThreadId;
  cb_->File.RecordedProcessId = (int32_t)getpid();
  cb_->File.RecordedThreadId = (uint32_t)pthread_self();
  snprintf(cb_->File.TraceDirectory, sizeof cb_->File.TraceDirectory, "%s/", dir_.Path().c_str());
  snprintf(cb_->File.TraceFilePath, sizeof cb_->File.TraceFilePath, "/dev/null");
  strcpy(cb_->Identity.ProcessName, "captest");
  cb_->File.FileDescriptor = open("/dev/null", O_WRONLY);
  SetValueForCodeRangeCheck(cb_);
}

CaptureBlock::~CaptureBlock() {
  if (cb_->File.FileDescriptor > 0) {
    close(cb_->File.FileDescriptor);
  }
  free(cb_);
}

std::string CaptureBlock::Text() const {
  return std::string(cb_->WriteBuffer, (size_t)cb_->WriteBufferFill);
}

std::string CaptureBlock::Take() {
  std::string text = Text();
  Clear();
  return text;
}

void CaptureBlock::Clear() {
  cb_->WriteBufferFill = 0;
  cb_->WriteBuffer[0] = '\0';
}

void CaptureBlock::SetCcsid(int32_t ccsid) {
  cb_->Settings.ShowHexCharCcsid = ccsid;
  SetValueForCodeRangeCheck(cb_);
}

std::string CaptureBlock::Alerts() const {
  char name[64];
  snprintf(name, sizeof name, "wz_apiexit_error_%d_%u.txt", (int)kProcessId, kThreadId);
  return dir_.Read(name);
}

namespace {

const char kCaptureFile[] = "wz_capture.t";

} // namespace

FileCapture::FileCapture() {
  std::string path = dir.File(kCaptureFile);
  close(cb->File.FileDescriptor);
  cb->File.FileDescriptor = open(path.c_str(), O_RDWR | O_CREAT | O_APPEND, 0600);
  snprintf(cb->File.TraceFilePath, sizeof cb->File.TraceFilePath, "%s", path.c_str());
}

std::string FileCapture::Text() const {
  return dir.Read(kCaptureFile) + block.Text();
}

std::vector<std::string> TextLines(const std::string &text) {
  return SplitTextLines(text);
}
