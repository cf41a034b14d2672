#include "apps/orv-library/service/SampleContent.h"

#include <stdexcept>

#include "OrvHost/TextFile.h"
#include "OrvLibrary/host/FileReaper.h"
#include "OrvLibrary/host/FileUtils.h"
#include "apps/catalog-service/ZipWriter.h"
#include "apps/orv-library/service/SampleCatalog.h"
#include "apps/orv-library/service/SamplePicture.h"

namespace {

const char* const kIndexName = "Orv_Core_Content_Index.txt";
const char* const kBonusListName = "Orv_Bonus_Content_Index.txt";
const char* const kManufacturerListName = "Orv_Manufacturer_Content_Index.txt";
const char* const kReferencedName = "Core Textures.zip";
constexpr int kTextureSide = 96;
constexpr int kLogoSide = 64;

struct Catalog
{
    const char* name;
    std::vector<std::string> folders;
    int itemsPerFolder;
    int geometryBytes;
};

/// From 20 KB to nearly 5 MB.
const std::vector<Catalog> kCoreCatalogs = {
    {"Bath Fixtures", {"Basins", "Baths", "Showers", "Toilets"}, 40, 6000},
    {"Café Möbel", {"Stühle", "Tische", "Theken"}, 25, 4000},
    {"Doors", {"Interior Doors", "Exterior Doors", "Sliding Doors"}, 60, 5000},
    {"Electrical Symbols", {"Outlets"}, 8, 300},
    {"Élégance Décor", {"Miroirs", "Tapis", "Cadres"}, 30, 3500},
    {"Floors", {"Wood", "Stone", "Tiles"}, 35, 1200},
    {"Garage", {"Doors", "Shelves"}, 12, 2500},
    {"Kitchen Cabinets", {"Base Cabinets", "Wall Cabinets", "Tall Cabinets", "Corner Cabinets"}, 90, 12000},
    {"Lighting", {"Ceiling", "Wall", "Table", "Outdoor"}, 45, 2000},
    {"Outdoor Living", {"Grills", "Seats", "Pergolas"}, 20, 8000},
    {"Plants and Trees", {"Trees", "Shrubs", "Perennials", "House Plants"}, 50, 3000},
    {"Sofas 2", {"Two Seats", "Three Seats", "Corner"}, 28, 7000},
    {"Stairs", {"Straight", "Spiral"}, 10, 9000},
    {"Türen und Fenster", {"Türen", "Fenster", "Dachfenster"}, 40, 4500},
};

struct Archive
{
    const char* name;
    std::vector<std::string> folders;
    int manufacturer; ///< 0 for bonus content
    int textures;
};

const std::vector<Archive> kArchives = {
    {"Garden Party", {"Lanterns", "Tents", "Tables"}, 0, 6},
    {"Holiday Décor", {"Garlands", "Candles"}, 0, 4},
    {"Atelier Lumière", {"Suspensions", "Lampadaires"}, 101, 5},
    {"Nordfenster", {"Fenster", "Türen"}, 102, 8},
    {"Oakline Cabinets", {"Base", "Wall", "Tall"}, 103, 7},
};

struct Manufacturer
{
    int id;
    const char* name;
    const char* url;
    const char* phone;
    const char* fax;
    const char* email;
    const char* logo;
    bool isDeleted;
};

const std::vector<Manufacturer> kManufacturers = {
    {101, "Atelier Lumière", "https://atelier-lumiere.example", "+33 1 55 01 01 01", "default",
     "bonjour@atelier-lumiere.example", "Atelier Lumière.png", false},
    {102, "Nordfenster", "https://nordfenster.example", "default", "default", "default", "Nordfenster.png",
     false},
    {103, "Oakline Cabinets", "https://oakline.example", "+1 555 0103", "+1 555 0104", "default",
     "Oakline.png", false},
    {104, "Former Lamps", "https://former-lamps.example", "default", "", "", "Former Lamps.png", true},
};

std::string record(const Manufacturer& maker)
{
    const auto member = [](const char* key, const std::string& value) {
        return std::string("    \"") + key + "\": \"" + value + "\",\n";
    };
    return "  \"Manufacturer\": {\n    \"Id\": " + std::to_string(maker.id) + ",\n" +
           member("Last_Modified", "20260101T000000") + member("Name", maker.name) +
           member("Url", maker.url) + member("Phone", maker.phone) + member("Fax", maker.fax) +
           member("Email", maker.email) + member("Logo", maker.logo) +
           "    \"Lock\": false,\n    \"Deleted\": " + (maker.isDeleted ? "true" : "false") + "\n  }";
}

SampleCatalogPlan planOf(const std::string& name, const std::vector<std::string>& folders, std::uint32_t seed)
{
    SampleCatalogPlan plan;
    plan.id = "sample-" + std::to_string(seed);
    plan.name = name;
    plan.folders = folders;
    plan.seed = seed;
    return plan;
}

} // namespace

SampleContent::SampleContent(std::string folder) : mFolder(std::move(folder)) {}

void SampleContent::write()
{
    for (const char* name : {"/content", "/manufacturers"})
        if (!FileUtils::createDirectoriesWithPerm(fileString(mFolder + name), false))
            throw std::runtime_error(mFolder + name + ": cannot be created");
    writeCoreCatalogs();
    writeReferencedArchive();
    writeArchives();
    writeManufacturers();
}

std::string SampleContent::place(const std::string& name)
{
    mFiles.push_back(name);
    return mFolder + "/" + name;
}

void SampleContent::writeText(const std::string& name, const std::string& text)
{
    const std::string path = place(name);
    OrvHost::TextFile::write(fileString(path), text);
}

void SampleContent::writeCoreCatalogs()
{
    std::string index;
    std::uint32_t seed = 1;
    for (const Catalog& catalog : kCoreCatalogs) {
        SampleCatalogPlan plan = planOf(catalog.name, catalog.folders, seed++);
        plan.itemsPerFolder = catalog.itemsPerFolder;
        plan.geometryBytes = catalog.geometryBytes;
        const std::string name = std::string(catalog.name) + ".orvlib";
        writeSampleCatalog(place("content/" + name), plan);
        index += name + "\n";
    }
    writeText(std::string("content/") + kIndexName, index + kReferencedName + "\n");
}

void SampleContent::writeReferencedArchive()
{
    ZipWriter archive(place(std::string("content/") + kReferencedName));
    std::uint32_t seed = 500;
    for (const char* name : {"Oak.png", "Granite.png", "Terracotta.png", "Linen.png", "Béton.png"})
        archive.add(name, SamplePicture::texture(seed++, kTextureSide).toStdString());
    archive.close();
}

void SampleContent::writeArchives()
{
    std::uint32_t seed = 100;
    std::string bonus, manufacturer;
    for (const Archive& source : kArchives) {
        (source.manufacturer == 0 ? bonus : manufacturer) += std::string(source.name) + ".orvlib\n";
        SampleCatalogPlan plan = planOf(source.name, source.folders, ++seed);
        plan.itemsPerFolder = 15;
        plan.geometryBytes = 2000;
        plan.manufacturer = source.manufacturer;

        const std::string path = place(std::string("content/") + source.name + ".orvlibz");
        const std::string database = path + ".orvlib";
        FileReaper guard{fileString(database)};
        writeSampleCatalog(database, plan);
        ZipWriter archive(path);
        archive.addFile(std::string(source.name) + ".orvlib", database);
        for (int i = 1; i <= source.textures; ++i)
            archive.add("textures/" + std::string(source.name) + " " + std::to_string(i) + ".png",
                        SamplePicture::texture(seed * 100 + static_cast<std::uint32_t>(i), kTextureSide)
                            .toStdString());
        archive.close();
    }
    writeText(std::string("content/") + kBonusListName, bonus);
    writeText(std::string("content/") + kManufacturerListName, manufacturer);
}

void SampleContent::writeManufacturers()
{
    std::string text = "{\n  \"Last_Modified\": \"20260101T000000\",\n"
                       "  \"Default_Text\": \"Please ask your dealer.\"";
    for (const Manufacturer& maker : kManufacturers) {
        text += ",\n" + record(maker);
        writeText(std::string("manufacturers/") + maker.logo,
                  SamplePicture::png(static_cast<std::uint32_t>(maker.id), kLogoSide).toStdString());
    }
    writeText("manufacturers/manufacturer_data.json", text + "\n}\n");
}
