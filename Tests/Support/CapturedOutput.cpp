#include "CapturedOutput.h"

#include <cstdio>
#include <iostream>
#include <stdexcept>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

namespace ka_test {

namespace {

void flushAll() {
    std::cout.flush();
    std::fflush(stdout);
}

int openUnnamedFile() {
    const int file = memfd_create("captured output", MFD_CLOEXEC);
    if (file < 0)
        throw std::runtime_error("no memory file for captured output");
    return file;
}

} // namespace

CapturedOutput::CapturedOutput() : _saved(-1), _file(openUnnamedFile()) {
    flushAll();
    _saved = dup(STDOUT_FILENO);
    dup2(_file, STDOUT_FILENO);
}

CapturedOutput::~CapturedOutput() {
    flushAll();
    dup2(_saved, STDOUT_FILENO);
    close(_saved);
    close(_file);
}

std::string CapturedOutput::text() const {
    flushAll();
    std::string text(static_cast<std::size_t>(lseek(_file, 0, SEEK_END)), '\0');
    const ssize_t count = pread(_file, text.data(), text.size(), 0);
    text.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    return text;
}

} // namespace ka_test
