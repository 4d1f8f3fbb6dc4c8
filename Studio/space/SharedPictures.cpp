#include "SharedPictures.h"

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ka::studio {

namespace {

qint64 bytesFor(QSize size) {
    return qint64{4} * size.width() * size.height();
}

} // namespace

SharedPictures::SharedPictures() : _descriptor(memfd_create("ka-studio-pictures", MFD_CLOEXEC)) {}

SharedPictures::SharedPictures(int descriptor) : _descriptor(descriptor) {}

SharedPictures::~SharedPictures() {
    unmap();
    if (_descriptor >= 0)
        close(_descriptor);
}

void SharedPictures::unmap() {
    if (_bytes != nullptr)
        munmap(_bytes, static_cast<std::size_t>(_mapped));
    _bytes = nullptr;
    _mapped = 0;
}

/// All of it; never less than before, because the memory only grows.
bool SharedPictures::map() {
    struct stat now {};
    if (_descriptor < 0 || fstat(_descriptor, &now) != 0 || now.st_size == 0)
        return false;
    if (now.st_size == _mapped)
        return true;
    unmap();
    void* memory = mmap(nullptr, static_cast<std::size_t>(now.st_size), PROT_READ | PROT_WRITE, MAP_SHARED,
                        _descriptor, 0);
    if (memory == MAP_FAILED)
        return false;
    _bytes = static_cast<uchar*>(memory);
    _mapped = now.st_size;
    return true;
}

bool SharedPictures::makeRoom(QSize size) {
    const qint64 wanted = Places * bytesFor(size);
    if (wanted <= _mapped)
        return true;
    return _descriptor >= 0 && ftruncate(_descriptor, wanted) == 0 && map();
}

QImage SharedPictures::picture(quint32 place, QSize size) {
    const qint64 bytes = bytesFor(size);
    if (place >= Places || size.isEmpty() || !map() || _mapped < Places * bytes)
        return {};
    return QImage(_bytes + (place == 0 ? 0 : _mapped / Places), size.width(), size.height(), 4 * size.width(),
                  QImage::Format_ARGB32_Premultiplied);
}

} // namespace ka::studio
