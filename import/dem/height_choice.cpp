#include "import/dem/height_choice.h"

#include "companions/companion_error.h"

namespace {

constexpr const char* kOptions =
    "--heights egm96 (most SRTM and national models; converted), --heights ellipsoid (WGS 84), or --heights as-is "
    "(no conversion, whatever they are)";

HEIGHT_CHOICE ChoiceOfFile(const DEM_SOURCE& source) {
    switch (source.Heights().reference) {
        case HEIGHT_REFERENCE::ELLIPSOID:
            return HEIGHT_CHOICE::ELLIPSOID;
        case HEIGHT_REFERENCE::EGM96:
            return HEIGHT_CHOICE::EGM96;
        case HEIGHT_REFERENCE::OTHER:
            throw COMPANION_ERROR(source.Name() + ": its heights refer to " + Quoted(source.Heights().name) +
                                  ", which is not converted; the processor needs heights above the WGS 84 ellipsoid. "
                                  "Convert them first (gdalwarp), or say " +
                                  kOptions);
        case HEIGHT_REFERENCE::UNKNOWN:
            break;
    }
    throw COMPANION_ERROR(source.Name() +
                          ": the file does not say to what its heights refer, and the geoid lies up to 107 m off the "
                          "ellipsoid that the processor needs. Say " +
                          kOptions);
}

}  // namespace

HEIGHT_CHOICE ChooseHeights(const std::string& option, const std::vector<std::unique_ptr<DEM_SOURCE>>& sources) {
    if (option == "ellipsoid") return HEIGHT_CHOICE::ELLIPSOID;
    if (option == "egm96") return HEIGHT_CHOICE::EGM96;
    if (option == "as-is") return HEIGHT_CHOICE::AS_IS;
    const HEIGHT_CHOICE choice = ChoiceOfFile(*sources.front());
    for (const auto& source : sources) {
        if (ChoiceOfFile(*source) != choice)
            throw COMPANION_ERROR(source->Name() + ": its heights refer to " + Quoted(source->Heights().name) +
                                  ", those of " + sources.front()->Name() + " do not: import them separately");
    }
    return choice;
}

std::string ContradictionIn(HEIGHT_CHOICE choice, const DEM_SOURCE& source) {
    const HEIGHT_REFERENCE told = source.Heights().reference;
    const bool agrees = (choice == HEIGHT_CHOICE::ELLIPSOID && told == HEIGHT_REFERENCE::ELLIPSOID) ||
                        (choice == HEIGHT_CHOICE::EGM96 && told == HEIGHT_REFERENCE::EGM96);
    return agrees ? "" : source.Heights().name;
}
