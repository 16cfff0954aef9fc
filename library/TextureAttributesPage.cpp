#include "library/TextureAttributesPage.h"

#include <cstddef>
#include <vector>

#include "host/NodeInterface.h"
#include "host/widgets/QNodeAttributesWidget.h"
#include "nodes/TextureGradientNode.h"
#include "ui/QTextureGradientWidget.h"

namespace {

using AdditionalInfo = QNodeAttributesWidget::AdditionalInfo;

// Node type codes of the types whose page needs presentation records.
constexpr unsigned kPerlinCode = 261;
constexpr unsigned kBillowCode = 266;
constexpr unsigned kRidgedMultiCode = 272;
constexpr unsigned kVoronoiCode = 277;
constexpr unsigned kTurbulenceCode = 517;
constexpr unsigned kWaveCode = 1306;
constexpr unsigned kGradientCode = 1296;

std::vector<AdditionalInfo> frequencyRecords(std::size_t count, std::size_t frequencyId) {
    std::vector<AdditionalInfo> records(count);
    records[frequencyId].frequency = true;
    return records;
}

/// One record per attribute id, or none when the host's defaults suit every row.
std::vector<AdditionalInfo> presentationRecords(unsigned code) {
    switch (code) {
        case kPerlinCode:
        case kBillowCode:
            return frequencyRecords(10, 0);
        case kRidgedMultiCode:
            return frequencyRecords(13, 0);
        case kVoronoiCode:
            return frequencyRecords(9, 0);
        case kTurbulenceCode:
            return frequencyRecords(4, 2);
        case kWaveCode: {
            // Shown under the noise scale row, the noise's strength and seed need no prefix.
            std::vector<AdditionalInfo> records(10);
            records[6].label = "Strength";
            records[7].label = "Seed";
            return records;
        }
        default:
            return {};
    }
}

}  // namespace

QWidget* TextureAttributesPage::Create(NodeInterface* interface, Node* node, QWidget* parent,
                                       int page, QWidget** lastGradientPage) {
    if (page != 0)
        return nullptr;
    const unsigned code = interface->GetNodeType().code;
    if (code == kGradientCode) {
        auto* gradientPage =
            new QTextureGradientWidget(parent, dynamic_cast<TextureGradientNode*>(node), interface);
        if (lastGradientPage != nullptr)
            *lastGradientPage = gradientPage;
        return gradientPage;
    }
    const std::vector<AdditionalInfo> records = presentationRecords(code);
    return new QNodeAttributesWidget(parent, node, interface,
                                     records.empty() ? nullptr : records.data(), false);
}
