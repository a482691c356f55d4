#include "fuzz/fuzz_support.h"

#include <dirent.h>
#include <fcntl.h>
#include <pthread.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <unistd.h>

#include "exit/control_block.h"
#include "output/trace_file.h"
#include "tests/harness_text.h"

void FuzzCheckFailed(const char *file, int line, const char *condition, const char *format, ...) {
  fprintf(stderr, "%s:%d: check failed: %s\n", file, line, condition);
  if (format[0] != '\0') {
    va_list args;
    va_start(args, format);
    vfprintf(stderr, format, args);
    va_end(args);
    fputc('\n', stderr);
  }
  abort();
}

namespace {

std::string *gScratch = nullptr;

void RemoveScratch() {
  if (gScratch != nullptr) {
    ClearDirectory(*gScratch);
    rmdir(gScratch->c_str());
  }
}

} // namespace

const std::string &ScratchDirectory() {
  if (gScratch == nullptr) {
    char pattern[] = "/tmp/wzfz.XXXXXX";
    if (mkdtemp(pattern) == nullptr) {
      perror("mkdtemp");
      abort();
    }
    gScratch = new std::string(std::string(pattern) + "/");
    atexit(RemoveScratch);
  }
  return *gScratch;
}

void EnterScratchDirectory() {
  if (chdir(ScratchDirectory().c_str()) != 0) {
    perror("chdir");
    abort();
  }
}

std::vector<std::string> ListDirectory(const std::string &directory) {
  std::vector<std::string> names;
  if (DIR *dir = opendir(directory.c_str())) {
    while (dirent *entry = readdir(dir)) {
      if (strcmp(entry->d_name, ".") != 0 && strcmp(entry->d_name, "..") != 0) {
        names.push_back(entry->d_name);
      }
    }
    closedir(dir);
  }
  return names;
}

void ClearDirectory(const std::string &directory) {
  for (const std::string &name : ListDirectory(directory)) {
    unlink((directory + "/" + name).c_str());
  }
}

std::string ReadWholeFile(const std::string &path) {
  std::string text;
  FILE *file = fopen(path.c_str(), "rb");
  if (file == nullptr) {
    return text;
  }
  char buffer[65536];
  size_t n;
  while ((n = fread(buffer, 1, sizeof buffer, file)) > 0) {
    text.append(buffer, n);
  }
  fclose(file);
  return text;
}

void WriteWholeFile(const std::string &path, const void *data, size_t size) {
  FILE *file = fopen(path.c_str(), "wb");
  FUZZ_CHECK(file != nullptr, "cannot create %s", path.c_str());
  FUZZ_CHECK(size == 0 || fwrite(data, 1, size, file) == size, "cannot write %s", path.c_str());
  FUZZ_CHECK(fclose(file) == 0, "cannot close %s", path.c_str());
}

size_t CountLines(const std::string &text) {
  size_t lines = 0;
  for (char c : text) {
    lines += c == '\n' ? 1 : 0;
  }
  return lines;
}

uint8_t FuzzInput::Byte() {
  return offset_ < size_ ? data_[offset_++] : 0;
}

uint16_t FuzzInput::U16() {
  uint16_t low = Byte();
  return (uint16_t)(low | (uint16_t)(Byte() << 8));
}

uint32_t FuzzInput::U32() {
  uint32_t low = U16();
  return low | ((uint32_t)U16() << 16);
}

std::string FuzzInput::Bytes(size_t count) {
  size_t n = count < Remaining() ? count : Remaining();
  std::string bytes((const char *)data_ + offset_, n);
  offset_ += n;
  return bytes;
}

std::string FuzzInput::Piece() {
  return Bytes(Byte());
}

std::string FuzzInput::Rest() {
  return Bytes(Remaining());
}

std::vector<std::string> SplitLines(const std::string &text) {
  return SplitTextLines(text);
}

ExitControlBlock *AlertBlock() {
  static ExitControlBlock *cb = nullptr;
  if (cb == nullptr) {
    cb = (ExitControlBlock *)calloc(1, sizeof(ExitControlBlock));
    FUZZ_CHECK(cb != nullptr);
    memcpy(cb->EyeCatcher, CONTROL_BLOCK_EYE_CATCHER, sizeof CONTROL_BLOCK_EYE_CATCHER);
    cb->ExitType = EXIT_TYPE_API;
    snprintf(cb->File.TraceDirectory, sizeof cb->File.TraceDirectory, "%s",
             ScratchDirectory().c_str());
  }
  return cb;
}

CaptureBlock::CaptureBlock(int32_t bufferSize) {
  cb_ = (ExitControlBlock *)calloc(1, sizeof(ExitControlBlock) + (size_t)bufferSize + 1);
  FUZZ_CHECK(cb_ != nullptr);
  memcpy(cb_->EyeCatcher, CONTROL_BLOCK_EYE_CATCHER, sizeof CONTROL_BLOCK_EYE_CATCHER);
  SetDefaultParameterSettings(&cb_->Settings);
  cb_->Settings.WriteCache = 1;
  cb_->Settings.WriteStream = 0;
  cb_->Settings.WriteInterval = 0;
  cb_->Settings.WriteAfterEachApi = 0;
  cb_->Settings.WriteBufferSize = bufferSize;
  cb_->WriteBufferSize = bufferSize;
  cb_->ExitType = EXIT_TYPE_API;
  cb_->Identity.ProcessId = (int32_t)getpid();
  cb_->Identity.ThreadId = (uint32_t)pthread_self();
  cb_->File.RecordedProcessId = cb_->Identity.ProcessId;
  cb_->File.RecordedThreadId = cb_->Identity.ThreadId;
  cb_->File.NoAddress = 1;
  snprintf(cb_->File.TraceDirectory, sizeof cb_->File.TraceDirectory, "%s",
           ScratchDirectory().c_str());
  snprintf(cb_->File.TraceFilePath, sizeof cb_->File.TraceFilePath, "%swz_capture.t",
           ScratchDirectory().c_str());
  strcpy(cb_->Identity.ProcessName, "wzfuzz");
  fd_ = memfd_create("wz_capture", MFD_CLOEXEC);
  FUZZ_CHECK(fd_ > 2, "memfd_create");
  cb_->File.FileDescriptor = fd_;
  SetValueForCodeRangeCheck(cb_);
}

CaptureBlock::~CaptureBlock() {
  close(fd_);
  free(cb_);
}

std::string CaptureBlock::Take() {
  FUZZ_CHECK(FlushTraceDataInBuffer(cb_) == 0, "flush failed");
  FUZZ_CHECK(cb_->FatalError == 0, "the trace stopped on a write failure");
  off_t size = lseek(fd_, 0, SEEK_END);
  FUZZ_CHECK(size >= 0);
  std::string text((size_t)size, '\0');
  FUZZ_CHECK(size == 0 || pread(fd_, &text[0], (size_t)size, 0) == (ssize_t)size);
  FUZZ_CHECK(ftruncate(fd_, 0) == 0);
  FUZZ_CHECK(lseek(fd_, 0, SEEK_SET) == 0);
  cb_->File.CurrentFileSize = 0;
  return text;
}

void CaptureBlock::SetCcsid(int32_t ccsid) {
  cb_->Settings.ShowHexCharCcsid = ccsid;
  SetValueForCodeRangeCheck(cb_);
}

int32_t ReadFuzzEncoding(FuzzInput &in) {
  switch (in.Byte() & 3) {
  case 0:
    return 546;
  case 1:
    return 273;
  case 2:
    return 0;
  default:
    return (int32_t)in.U32();
  }
}

int32_t ReadFuzzLimit(FuzzInput &in) {
  uint16_t limit = in.U16();
  return limit == 0xFFFF ? -1 : limit;
}

CaptureBlock &ParsedContentCapture(int32_t limit, int32_t lineLength) {
  static CaptureBlock *capture = new CaptureBlock(8192);
  ExitControlBlock *cb = capture->cb();
  cb->Settings.ShowMaxLenParsedContent = limit;
  cb->Settings.MaxParsedOutputLineLength = lineLength;
  capture->Take();
  return *capture;
}
