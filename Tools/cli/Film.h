#pragma once

#include <QImage>
#include <cstdio>
#include <string>

namespace ka::tools {

/// A film that is being written: through the program ffmpeg where it is installed, else a folder of numbered pictures.
/// Until it is finished it stands beside its name; what is not finished goes.
class Film {
  public:
    /// @param path  of an .mp4 file. @param framesPerSecond  of the film.
    /// @throws Failure (Usage) for another kind of file, (OutputFailed).
    Film(std::string path, double framesPerSecond);
    ~Film();
    Film(const Film&) = delete;
    Film& operator=(const Film&) = delete;

    /// All pictures are of one size, even in both directions. @throws Failure (OutputFailed).
    void add(const QImage& picture);

    /// @return what there is now: the file, or the folder of pictures. @throws Failure (OutputFailed).
    std::string finish();

    /// Whether there is a program to make a film.
    bool isFilm() const { return !_program.empty(); }

  private:
    void start(const QImage& picture);
    void stop();

    std::string _path, _program, _temporary;
    double _framesPerSecond;
    std::FILE* _pipe = nullptr;
    int _process = -1;
    std::size_t _count = 0;
};

} // namespace ka::tools
