// texture._native: the host for scripts. Loads the plug-in once per process, as the texture
// command does, and exposes documents, renders into numpy arrays and point sampling; the
// package `texture` wraps it in the documented Python API.

#include <dlfcn.h>
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>

#include "apps/common/NodeListing.h"
#include "host/Image.h"
#include "host/Log.h"
#include "host/NodeInterface.h"
#include "host/PluginLoader.h"
#include "python/native/ImageArrays.h"
#include "python/native/PointSampler.h"
#include "python/native/ScriptDocument.h"

namespace py = pybind11;
using nlohmann::json;

namespace {

// Renders of more pixels than this go in bands of rows, so that Ctrl-C stops them between
// bands; smaller ones are one piece, returned without a copy.
constexpr std::size_t kBandPixels = std::size_t{1} << 22;
// Points sampled between two looks at Ctrl-C.
constexpr std::size_t kSampleBatch = std::size_t{1} << 18;

/// The plug-in: TEXTURE_PLUGIN when set, otherwise the one beside this extension (where the
/// build tree and the install tree put it).
std::string PluginPath() {
    if (const char* path = std::getenv("TEXTURE_PLUGIN"); path != nullptr && *path != '\0')
        return path;
    Dl_info info{};
    dladdr(reinterpret_cast<void*>(&PluginPath), &info);
    return (std::filesystem::path(info.dli_fname).parent_path() / "libTexture.so").string();
}

/// Loaded on first use and kept until the process ends: documents of any thread hold nodes
/// of the plug-in, and unloading it under them would leave their code behind.
const PluginLoader& Catalogue() {
    static const PluginLoader* loader = [] {
        auto* created = new PluginLoader();
        std::string error;
        if (!created->Load(PluginPath(), &error)) {
            delete created;
            throw std::runtime_error(error);
        }
        return created;
    }();
    return *loader;
}

std::string CatalogueJson() {
    json list = json::array();
    const auto& types = Catalogue().GetNodeInterfaces();
    for (unsigned i = 0; i < types.size(); ++i)
        list.push_back(DescribeNodeType(*types[i], i));
    return list.dump();
}

ScriptDocument::RenderRequest MakeRequest(const std::string& node, const py::object& size,
                                          const py::object& window, unsigned threads,
                                          bool tileable) {
    ScriptDocument::RenderRequest request;
    request.node = node;
    request.threads = threads;
    request.tileable = tileable;
    if (!size.is_none()) {
        const auto [width, height] = size.cast<std::pair<int, int>>();
        if (width < 1 || height < 1)
            throw std::invalid_argument("size must be (width, height) of at least 1 x 1, got (" +
                                        std::to_string(width) + ", " + std::to_string(height) +
                                        ")");
        request.width = width;
        request.height = height;
    }
    if (!window.is_none()) {
        const auto [x0, y0, x1, y1] = window.cast<std::tuple<int, int, int, int>>();
        request.window = {x0, y0, x1, y1};
        if (request.window.IsEmpty())
            throw std::invalid_argument("window (x0, y0, x1, y1) must not be empty");
    }
    return request;
}

py::array_t<float> RenderInBands(ScriptDocument& document, ScriptDocument::RenderRequest request,
                                 int width, int height) {
    const RenderOptions::Window whole =
        request.window.IsEmpty() ? RenderOptions::Window{0, 0, width, height} : request.window;
    py::array_t<float> result({py::ssize_t{height}, py::ssize_t{width}, py::ssize_t{4}});
    float* out = result.mutable_data();
    const std::size_t rowFloats = static_cast<std::size_t>(width) * 4;
    const int bandRows = std::max<int>(1, static_cast<int>(kBandPixels / width));
    for (int top = whole.y0; top < whole.y1; top += bandRows) {
        request.window = {whole.x0, top, whole.x1, std::min(whole.y1, top + bandRows)};
        {
            py::gil_scoped_release unlocked;
            Image* band = document.Render(request);
            const int rows = band->GetSizeY();
            // The band's image counts rows from the bottom, the array from the top.
            for (int r = 0; r < rows; ++r)
                std::memcpy(
                    out + (static_cast<std::size_t>(top - whole.y0) + rows - 1 - r) * rowFloats,
                    band->GetConstArray() + static_cast<std::size_t>(r) * rowFloats,
                    rowFloats * sizeof(float));
            band->Release();
        }
        if (PyErr_CheckSignals() != 0)
            throw py::error_already_set();
    }
    return result;
}

py::array_t<float> Render(ScriptDocument& document, const std::string& node, const py::object& size,
                          const py::object& window, unsigned threads, bool tileable) {
    ScriptDocument::RenderRequest request = MakeRequest(node, size, window, threads, tileable);
    const auto [width, height] = document.PlannedSize(request);
    if (static_cast<std::size_t>(width) * static_cast<std::size_t>(height) > kBandPixels)
        return RenderInBands(document, request, width, height);
    Image* image = nullptr;
    {
        py::gil_scoped_release unlocked;
        image = document.Render(request);
    }
    py::array_t<float> view = ViewImage(image);
    image->Release();
    return view;
}

py::array_t<float> Sample(
    ScriptDocument& document, const std::string& node,
    const py::array_t<double, py::array::c_style | py::array::forcecast>& points, unsigned threads,
    bool runs) {
    if (points.ndim() != 2 || points.shape(1) != 3) {
        std::string shape;
        for (py::ssize_t d = 0; d < points.ndim(); ++d)
            shape += (d == 0 ? "" : ", ") + std::to_string(points.shape(d));
        throw std::invalid_argument("points must be an array of shape (N, 3), got shape (" + shape +
                                    ")");
    }
    const auto count = static_cast<std::size_t>(points.shape(0));
    std::unique_ptr<PointSampler> sampler;
    {
        py::gil_scoped_release unlocked;
        sampler = document.CompileTexture(node);
    }
    py::array_t<float> colors({points.shape(0), py::ssize_t{4}});
    const double* in = points.data();
    float* out = colors.mutable_data();
    for (std::size_t first = 0; first < count; first += kSampleBatch) {
        const std::size_t length = std::min(kSampleBatch, count - first);
        {
            py::gil_scoped_release unlocked;
            if (runs)
                sampler->SampleRuns(in + 3 * first, length, out + 4 * first, threads);
            else
                sampler->SampleEach(in + 3 * first, length, out + 4 * first);
        }
        if (PyErr_CheckSignals() != 0)
            throw py::error_already_set();
    }
    return colors;
}

}  // namespace

PYBIND11_MODULE(_native, m) {
    m.doc() = "The texture host for scripts; use the package `texture`, which wraps it.";
    // Renders report their timings at the info level; scripts want only problems.
    Log::SetLevel(Log::Level::kWarning);

    m.def("catalogue_json", &CatalogueJson,
          "The node catalogue as JSON text: one object per node type, plug-in types first.");
    m.def(
        "plugin_path", [] { return Catalogue().GetPluginPath(); },
        "The plug-in library the module loaded.");
    m.def("read_image", &ReadImageFile, py::arg("path"));
    m.def("write_image", &WriteImageFile, py::arg("path"), py::arg("pixels"), py::arg("bits") = 8,
          py::arg("compression") = "fast");

    py::class_<ArrayStreamWriter>(m, "ImageWriter")
        .def(py::init<const std::string&, int, int, int, bool, int, const std::string&>(),
             py::arg("path"), py::arg("width"), py::arg("height"), py::arg("bits"),
             py::arg("tiled"), py::arg("tile_side"), py::arg("compression"))
        .def("write", &ArrayStreamWriter::Write, py::arg("x"), py::arg("y"), py::arg("pixels"))
        .def("close", &ArrayStreamWriter::Close);

    py::class_<ScriptDocument>(m, "Document")
        .def(py::init([] { return std::make_unique<ScriptDocument>(Catalogue()); }))
        .def("load", &ScriptDocument::Load, py::arg("path"))
        .def("save", &ScriptDocument::Save, py::arg("path"))
        .def(
            "add",
            [](ScriptDocument& d, const std::string& type, const std::string& id,
               const std::string& attributes) {
                return d.AddNode(type, id, json::parse(attributes));
            },
            py::arg("type"), py::arg("id"), py::arg("attributes_json"))
        .def(
            "set",
            [](ScriptDocument& d, const std::string& id, const std::string& attributes) {
                d.SetAttributes(id, json::parse(attributes));
            },
            py::arg("id"), py::arg("attributes_json"))
        .def(
            "get",
            [](const ScriptDocument& d, const std::string& id) {
                // Text in declaration order, which a JSON object of the library would sort.
                std::string text;
                for (const auto& [name, value] : d.GetAttributes(id))
                    text += (text.empty() ? "{" : ", ") + json(name).dump() + ": " + value.dump();
                return text.empty() ? std::string("{}") : text + "}";
            },
            py::arg("id"))
        .def("link", &ScriptDocument::Link, py::arg("from_plug"), py::arg("to_plug"))
        .def("node_ids", &ScriptDocument::GetNodeIds)
        .def("node_type", &ScriptDocument::GetNodeType, py::arg("id"))
        .def_property("display", &ScriptDocument::GetDisplay, &ScriptDocument::SetDisplay)
        .def("render", &Render, py::arg("node"), py::arg("size"), py::arg("window"),
             py::arg("threads"), py::arg("tileable") = false)
        .def("sample", &Sample, py::arg("node"), py::arg("points"), py::arg("threads"),
             py::arg("runs"));
}
