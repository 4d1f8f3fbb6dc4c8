#include "PictureTexture.h"

#include "space/SpaceScene.h"

#include <QBuffer>
#include <QFileInfo>
#include <QImageReader>
#include <Qt3DRender/QAbstractTextureImage>
#include <Qt3DRender/QTextureImageData>
#include <Qt3DRender/QTextureImageDataGenerator>
#include <Qt3DRender/QTextureWrapMode>

namespace ka::studio {

namespace {

constexpr int LargestSide = 2048;
constexpr qint64 LargestFile = qint64{64} << 20;
constexpr qint64 MostPixels = qint64{1} << 28; ///< What a small file may ask for.

class PictureData : public Qt3DRender::QTextureImageDataGenerator {
  public:
    explicit PictureData(QImage picture) : _picture(std::move(picture)) {}

    Qt3DRender::QTextureImageDataPtr operator()() override {
        auto data = Qt3DRender::QTextureImageDataPtr::create();
        data->setImage(_picture);
        return data;
    }

    bool operator==(const Qt3DRender::QTextureImageDataGenerator& other) const override {
        const auto* same = Qt3DRender::functor_cast<PictureData>(&other);
        return same != nullptr && same->_picture.cacheKey() == _picture.cacheKey();
    }

    // What Qt's own macro calls is deprecated by Qt.
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    QT3D_FUNCTOR(PictureData)
    QT_WARNING_POP

  private:
    QImage _picture;
};

class PictureImage : public Qt3DRender::QAbstractTextureImage {
  public:
    explicit PictureImage(const QImage& picture) : _data(QSharedPointer<PictureData>::create(picture)) {}

  protected:
    Qt3DRender::QTextureImageDataGeneratorPtr dataGenerator() const override { return _data; }

  private:
    QSharedPointer<PictureData> _data;
};

} // namespace

QImage pictureOf(const SpaceMaterial& material) {
    QByteArray bytes = material.picture;
    QImageReader reader;
    QBuffer buffer(&bytes);
    if (!bytes.isEmpty()) {
        reader.setDevice(&buffer);
    } else {
        const QFileInfo file(material.pictureFile);
        if (material.pictureFile.isEmpty() || !file.isFile() || file.size() > LargestFile)
            return {};
        reader.setFileName(material.pictureFile);
    }
    const QSize size = reader.size();
    if (qint64{size.width()} * size.height() > MostPixels)
        return {};
    if (std::max(size.width(), size.height()) > LargestSide)
        reader.setScaledSize(size.scaled(LargestSide, LargestSide, Qt::KeepAspectRatio));
    const QImage picture = reader.read();
    return picture.isNull() ? picture : picture.convertToFormat(QImage::Format_RGBA8888);
}

Qt3DRender::QAbstractTexture* makeTexture(const QImage& picture, Qt3DCore::QNode* parent) {
    using namespace Qt3DRender;
    auto* texture = new QTexture2D(parent);
    texture->setFormat(QAbstractTexture::RGBA8_UNorm);
    texture->setSize(picture.width(), picture.height());
    texture->setGenerateMipMaps(true);
    texture->setMinificationFilter(QAbstractTexture::LinearMipMapLinear);
    texture->setMagnificationFilter(QAbstractTexture::Linear);
    texture->setWrapMode(QTextureWrapMode(QTextureWrapMode::Repeat));
    texture->addTextureImage(new PictureImage(picture));
    return texture;
}

} // namespace ka::studio
