// The scene's saved form: after the frame's items, the cameras, the
// porthole, the rendering settings, the focus and highlight make-ups, the
// environment and the lights. The cameras go out compactly (no holes), so
// the current index is the one among those written.
#include "orv/scene.h"

#include "orv/director.h"
#include "orv/makeup.h"
#include "orv/stream.h"

ORV_DEFINE_CLASS_INIT(OrvScene, "OrvFrame", OrvScene::read)

OrvActor* OrvScene::read(OrvIStream& in) {
    return new OrvScene(in);
}

OrvActor* OrvScene::copy() const {
    return new OrvScene(*this);
}

OrvClassInfo* OrvScene::classInfo() const {
    return _classInfo;
}

static const char* yesNo(unsigned long flag) {
    return flag ? "yes\n" : "no\n";
}

void OrvScene::write(OrvOStream& out) const {
    OrvFrame::write(out);
    out.writeComments("OrvScene class ...", 1);
    out.writeComments("  --> Camera(s)", 1);
    unsigned written = 0, current = 0, index = 0;
    for (OrvLink* l = cameras.first; l; l = l->next, index++) {
        if (!l->value) continue;
        if (index == currentCameraIndex) current = written;
        written++;
    }
    out.key("cameraCardinal") << written << '\n';
    out.key("currentCamera") << current << '\n';
    for (OrvLink* l = cameras.first; l; l = l->next)
        if (l->value) out << *(const OrvCamera*)l->value;
    out.writeComments("  --> Size of the view in unit coordinates", 1);
    out << porthole_;
    out.key("zbuffer") << yesNo(zBuffer);
    out.writeComments(" --> Focus", 1);
    out << (const OrvMakeUp*)focusMakeUp_;
    out.writeComments(" --> Highlight", 1);
    out << (const OrvMakeUp*)highlightMakeUp_;
    out << (const OrvEnvironment*)environment_;
    out.key("lightCardinal") << lights.length() << '\n';
    for (OrvLink* l = lights.first; l; l = l->next) out << (const OrvLight*)l->value;
    out.key("lightOn") << yesNo(lightAllowed);
    out.key("textureOn") << yesNo(textureAllowed);
    out.key("dithering") << yesNo(dithering);
    out.key("transparency") << transparencyType << '\n';
    out.key("roleProducerAcc") << yesNo(roleProducerAcc);
}

OrvScene::OrvScene(OrvIStream& in) : OrvFrame(in), theaterHook(nullptr) {
    // Every field at its start value first, so that a scene whose reading
    // stops half way can be deleted like any other.
    initScene();
    OrvDirector* director = makeUp ? makeUp->director : nullptr;
    repaintThreshold = director && director->doNotOptimize ? 0.0f : 0.1f;
    useScissor = 0;
    interactiveMode = OrvInteractiveFull | OrvInteractiveNoDepth;
    unsigned long before = in.faults;
    auto good = [&]() { return in.faults == before && in.stream; };
    if (!good()) return;
    char buffer[1024];
    unsigned long cameraCount = 0, current = 0;
    if (!_OrvReadItem_(in, buffer, "cameraCardinal", cameraCount) ||
        !_OrvReadItem_(in, buffer, "currentCamera", current))
        return;
    for (unsigned long i = 0; i < cameraCount; i++) {
        OrvCamera camera;
        in >> camera;
        if (!good()) return;
        add(camera);
    }
    // A scene always has a camera.
    if (!cameraCount) add(OrvCamera());
    currentCameraIndex = current < cameraCount ? (unsigned)current : 0;

    Orv3dRect viewport = porthole_;
    in >> viewport;
    if (!good()) return;
    porthole_ = viewport;
    unsigned long depthTest = 1;
    if (!_OrvReadItemBoolean_(in, buffer, "zbuffer", depthTest)) return;
    zBuffer = depthTest;

    OrvMakeUp* focus = nullptr;
    in >> focus;
    if (!good()) return;
    if (focus) focusMakeUp(focus);
    OrvMakeUp* highlight = nullptr;
    in >> highlight;
    if (!good()) return;
    if (highlight) highlightMakeUp(highlight);
    OrvEnvironment* lighting = nullptr;
    in >> lighting;
    if (lighting) {
        // Held at once: an environment read is never left without a holder.
        OrvEnvironment* old = environment_;
        environment_ = lighting;
        OrvCount(lighting);
        OrvRelease(old);
    }
    if (!good()) return;

    unsigned long lightCount = 0;
    if (!_OrvReadItem_(in, buffer, "lightCardinal", lightCount)) return;
    for (unsigned long i = 0; i < lightCount; i++) {
        OrvLight* light = nullptr;
        in >> light;
        if (light) add(light);
        if (!good()) return;
    }

    unsigned long lightOn = 1, textureOn = 1, ditherOn = 1, transparency = 0, installed = 0;
    if (!_OrvReadItemBoolean_(in, buffer, "lightOn", lightOn) ||
        !_OrvReadItemBoolean_(in, buffer, "textureOn", textureOn) ||
        !_OrvReadItemBoolean_(in, buffer, "dithering", ditherOn) ||
        !_OrvReadItem_(in, buffer, "transparency", transparency) ||
        !_OrvReadItemBoolean_(in, buffer, "roleProducerAcc", installed))
        return;
    lightAllowed = lightOn;
    textureAllowed = textureOn;
    dithering = ditherOn;
    transparencyType = transparency;
    roleProducerAcc = installed;
}
