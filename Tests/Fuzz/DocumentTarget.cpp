#include <OpenSG/OSGBaseFunctions.h>
#include <QTemporaryFile>
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <kaAnimationManager.h>
#include <kaAnimationObject.h>

namespace {

kaAnimationManager& manager() {
    return *kaAnimationManager::the();
}

void clearRegistry() {
    while (!manager().getObjects().empty())
        manager().destroyObject(manager().getObjects().begin()->second);
    manager().destroyAllFields();
    kaAnimationManager::random(1);
}

void demand(bool holds, const char* what) {
    if (holds)
        return;
    std::fprintf(stderr, "broken: %s\n", what);
    std::abort();
}

/// Every object stands under its own id, and no parent is below itself.
void checkRegistry() {
    for (const auto& entry : manager().getObjects()) {
        demand(entry.second->getId() == entry.first, "registry key and id differ");
        unsigned int depth = 0;
        for (const kaAnimationObject* up = entry.second; up; up = up->getParentObject())
            demand(++depth <= KA_MAX_DEPTH + 1, "containment cycle");
    }
}

QString reloaded(const QString& text) {
    clearRegistry();
    demand(manager().loadAnimations(text, false), "a saved document does not load");
    checkRegistry();
    return manager().createAnimationXML();
}

bool loadAsFile(const std::uint8_t* data, std::size_t size) {
    QTemporaryFile file;
    if (!file.open())
        return false;
    file.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size));
    file.flush();
    return manager().loadAnimations(file.fileName(), true);
}

} // namespace

/// Whatever loads is sound, saves, and from its first reload on saves the same text for ever.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool started = osg::osgInit() && std::freopen("/dev/null", "w", stdout) != nullptr;
    (void)started;
    clearRegistry();
    const bool asFile = size > 0 && (data[size - 1] & 1U) != 0;
    const bool loaded =
        asFile ? loadAsFile(data, size)
               : manager().loadAnimations(
                     QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<int>(size)), false);
    if (!loaded) {
        demand(manager().getObjects().empty() && manager().getFields().empty(),
               "a refused document left something");
        return 0;
    }
    checkRegistry();
    const QString second = reloaded(manager().createAnimationXML());
    const QString third = reloaded(second);
    demand(reloaded(third) == third, "saving and loading does not settle");
    clearRegistry();
    return 0;
}
