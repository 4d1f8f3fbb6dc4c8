#pragma once

#include <QImage>

namespace ka::studio {

/// Two pictures in memory that two processes see: while the one is shown, the other is drawn. The file that stands for
/// the memory has no name and goes with the last process that has it open.
class SharedPictures {
  public:
    static constexpr quint32 Places = 2;

    SharedPictures();                        ///< Memory of its own; none where the system has no more.
    explicit SharedPictures(int descriptor); ///< What another process has made; takes the descriptor.
    ~SharedPictures();
    SharedPictures(const SharedPictures&) = delete;
    SharedPictures& operator=(const SharedPictures&) = delete;

    int descriptor() const { return _descriptor; }
    /// Makes room for pictures of a size; by whoever made the memory. What `picture` gave before is void.
    /// @return false where there is no memory.
    bool makeRoom(QSize size);
    /// The picture at a place, on the shared memory itself: premultiplied, four bytes a pixel. Null where the memory has
    /// no room for it.
    QImage picture(quint32 place, QSize size);

  private:
    bool map();
    void unmap();

    int _descriptor = -1;
    uchar* _bytes = nullptr;
    qint64 _mapped = 0;
};

} // namespace ka::studio
