#include "classifier/ClassResources.h"

#include "host/LowerCase.h"

namespace veltarn {

ResourceNames classResourceNames(const ClassDef& def) {
    ResourceNames names;
    auto add = [&](ResourceKind kind, const Property<std::wstring>& property) {
        if (property.isSet() && !property.value().empty()) names[kind].push_back(property.value());
    };
    const ObjectProperties& p = def.properties;
    add(ResourceKind::Block, p.blockName);
    add(ResourceKind::DimensionStyle, p.dimensionStyle);
    for (const auto& layer : p.layer.entries())
        if (layer && !layer->empty() && *layer != L"*") names[ResourceKind::Layer].push_back(*layer);
    add(ResourceKind::Linetype, p.linetype);
    add(ResourceKind::MleaderStyle, p.mleaderStyle);
    add(ResourceKind::MlineStyle, p.mlineStyle);
    add(ResourceKind::Pattern, p.pattern);
    add(ResourceKind::TextStyle, p.textStyle);
    return names;
}

bool loadClassResources(ClassifierDrawing& drawing, Classifier& classifier, const ClassDef& def) {
    ResourceNames missing;
    ResourceKinds wanted = 0;
    for (const auto& [kind, names] : classResourceNames(def)) {
        for (const std::wstring& name : names) {
            if (drawing.hasResource(kind, name)) continue;
            missing[kind].push_back(host::toLower(name));
            wanted |= bit(kind);
        }
    }
    if (wanted == 0) return true;
    for (const Classifier::ResourceFile& file : classifier.resourceFiles()) {
        const ResourceKinds kinds = file.kinds & wanted;
        if (kinds == 0) continue;
        if (!drawing.importResources(file.path, kinds, missing, classifier.loadedResources())) return false;
    }
    return true;
}

}  // namespace veltarn
