#include "tests/network/golden_events.h"

#include "network/EventTable.h"
#include "tests/support/ProtocolBytes.h"

using namespace NetworkCompanion;
using namespace MeshpadTest;

namespace {

template <typename EventClass, typename... Arguments>
GoldenEvent golden(int code, const QByteArray& payload, Arguments... arguments) {
    return {code, std::make_shared<EventClass>(arguments...), payload};
}

GoldenEvent goldenItemData() {
    const QByteArray screenMode =
        hex("00000001 00000005 00000006") + text("Left") + hex("00000004 00000007 01");
    const QByteArray partMode =
        hex("00000002 00000005 00000008 00000009") + text("Part") + hex("00000003 00000002 00");
    const QByteArray mediaMode = hex("00000001 00000000 0000000a 0000000b 0000000c") + text("Sea") +
                                 hex("00000002 00000002 01");
    const QByteArray screenPoint = hex("00000005 00000006") + text("Left") +
                                   hex("00000001 3ff8000000000000 c002000000000000"
                                       "0000000000000000 01 00");
    const QByteArray partPoint = hex("00000005 00000008 00000009") + text("Part") +
                                 hex("00000002 3fe0000000000000 0000000000000000"
                                     "8000000000000000 00 01");
    const QByteArray texturePoint = hex("00000014 00000015 00000016") + text("Noise") +
                                    hex("00000003 0000000000000000 3ff0000000000000"
                                        "0000000000000000 00 00");
    const QByteArray mediaPoint = hex("0000000a 0000000b 0000000c") + text("Sea") +
                                  hex("00000004 4056800000000000 bff0000000000000"
                                      "0000000000000000 01 01");

    auto event = std::make_shared<ItemDataEvent>(-1);
    event->setDeformationModeEvent({LV_NTC_DeformationType::Bezier, 5, 6, "Left", 4, 7, true});
    event->setScreenPartDeformationModeEvent(
        {LV_NTC_DeformationType::Curve, 5, 8, 9, "Part", 3, 2, false});
    event->setMediaDeformationModeEvent({LV_NTC_ElementType::Media,
                                         LV_NTC_DeformationType::Keystone, 10, 11, 12, "Sea", 2, 2,
                                         true});
    event->addScreenMovePointEvent({5, 6, "Left", 1, 1.5, -2.25, 0.0, true, false});
    event->addScreenMovePointEvent({5, 6, "Left", 1, 1.5, -2.25, 0.0, true, false});
    event->addScreenPartMovePointEvent({5, 8, 9, "Part", 2, 0.5, 0.0, -0.0, false, true});
    event->addTextureMovePointEvent({20, 21, 22, "Noise", 3, 0.0, 1.0, 0.0, false, false});
    event->addMediaMovePointEvent({10, 11, 12, "Sea", 4, 90.0, -1.0, 0.0, true, true});
    return {28, event,
            hex("ffffffff 00000000") + screenMode + partMode + mediaMode + hex("0000000000000002") +
                screenPoint + screenPoint + hex("0000000000000001") + partPoint +
                hex("0000000000000001") + texturePoint + hex("0000000000000001") + mediaPoint};
}

} // namespace

std::vector<GoldenEvent> goldenEvents() {
    return {
        golden<MsgEvent>(1, text("getResources"), "getResources"),
        golden<MireEvent>(2, hex("00000002 00000007"), 7U, LV_NTC_PictureType::Horizontal),
        golden<BlindEvent>(3, hex("00000002 00000001") + text("a") + hex("01"), 1U, 2U, "a", true),
        golden<MediaBlindEvent>(
            4, hex("00000002 0000000b 0000000c 0000000d") + text("Clouds") + hex("01"),
            LV_NTC_ElementType::Texture, 11U, 12U, 13U, "Clouds", true),
        golden<ScreenPartBlindEvent>(5, hex("00000001 00000002 00000003") + text("P") + hex("00"),
                                     1U, 2U, 3U, "P", false),
        golden<DeformationModeEvent>(
            6, hex("ffffffff 00000001 00000002") + text("Wall") + hex("00000003 00000004 01"),
            LV_NTC_DeformationType::None, 1U, 2U, "Wall", 3U, 4U, true),
        golden<MediaDeformationModeEvent>(7,
                                          hex("00000002 00000001 00000003 00000004 00000005") +
                                              text("Sea") + hex("00000006 00000007 01"),
                                          LV_NTC_ElementType::Texture,
                                          LV_NTC_DeformationType::Bezier, 3U, 4U, 5U, "Sea", 6U, 7U,
                                          true),
        golden<ScreenPartDeformationModeEvent>(
            8,
            hex("00000002 00000001 00000003 00000004") + text("Part") + hex("00000005 00000006 01"),
            LV_NTC_DeformationType::Curve, 1U, 3U, 4U, "Part", 5U, 6U, true),
        golden<AddMediaEvent>(9,
                              hex("00000002 0000000b 0000000c 0000000d 00000780 00000438 00000006"
                                  "4056800000000000") +
                                  text("Sea") + hex("01"),
                              MediaType::Video, 11U, 12U, 13U, 1920U, 1080U, 6U, 90.0, "Sea", true),
        golden<AddTextureEvent>(
            10,
            hex("00000001 00000002 00000004 00000005 00000006 c002000000000000") + text("Noise") +
                hex("01 00000003"),
            1U, 2U, 3U, 4U, 5U, 6U, -2.25, "Noise", true),
        golden<AddScreenEvent>(11,
                               hex("00000001 00000003 00000004 00000005 3fe0000000000000") +
                                   text("Wall") + hex("01 00000002 00"),
                               1U, 2U, 3U, 4U, 5U, 0.5, "Wall", true, false),
        golden<AddScreenPartEvent>(
            12,
            hex("00000001 00000002 00000004 00000005 00000006 3ff8000000000000") + text("P") +
                hex("01 00000003"),
            1U, 2U, 3U, 4U, 5U, 6U, 1.5, "P", true),
        golden<RemoveMediaEvent>(13, hex("00000001 00000002") + text("Sea"), 1U, 2U, "Sea"),
        golden<RemoveTextureEvent>(14, hex("00000003 00000004") + text("Noise"), 3U, 4U, "Noise"),
        golden<RemoveScreenEvent>(15, hex("fffffffe") + text(""), 0xfffffffeU),
        golden<RemoveScreenPartEvent>(16, hex("00000005 00000006") + text("P"), 5U, 6U, "P"),
        golden<MediaMovePointEvent>(17,
                                    hex("00000001 00000002 00000003") + text("Sea") +
                                        hex("00000004 3ff8000000000000 c002000000000000"
                                            "4056800000000000 01 00"),
                                    1U, 2U, 3U, "Sea", 4U, 1.5, -2.25, 90.0, true, false),
        golden<TextureMovePointEvent>(18,
                                      hex("00000001 00000002 00000003") + text("Noise") +
                                          hex("00000004 3fb999999999999a 8000000000000000"
                                              "0000000000000000 00 01"),
                                      1U, 2U, 3U, "Noise", 4U, 0.1, -0.0, 0.0, false, true),
        golden<ScreenMovePointEvent>(19,
                                     hex("00000001 00000002") + text("Wall") +
                                         hex("00000003 3ff8000000000000 c002000000000000"
                                             "4056800000000000 01 00"),
                                     1U, 2U, "Wall", 3U, 1.5, -2.25, 90.0, true, false),
        golden<ScreenPartMovePointEvent>(20,
                                         hex("00000001 00000002 00000003") + text("P") +
                                             hex("00000004 3ff8000000000000 c002000000000000"
                                                 "4056800000000000 00 01"),
                                         1U, 2U, 3U, "P", 4U, 1.5, -2.25, 90.0, false, true),
        golden<ScreenModeEvent>(21, hex("00000003 00000001 00000002") + text("Wall"),
                                LV_NTC_ModeType::Parts, 1U, 2U, "Wall"),
        golden<AddQuickKeyEvent>(
            22, hex("00000001 00000002 00000003") + text("Go") + hex("2366663030303000"), 1U, 2U,
            3U, "Go", "#ff0000"),
        golden<UpdateQuickKeyEvent>(23,
                                    hex("00000001 00000002") + text("Go") + hex("2330306666303000"),
                                    1U, 2U, "Go", "#00ff00"),
        golden<DeleteQuickKeyEvent>(24, hex("00000001 00000002"), 1U, 2U),
        golden<ExecuteQuickKeyEvent>(25, hex("00002710"), 10'000U),
        golden<ConfigQuickKeyEvent>(26, hex("00000002 00000003 00000004"), 2U, 3U, 4U),
        golden<UpdateSettingsEvent>(27, hex("2330303030383000 00000003"), "#000080", 3),
        goldenItemData(),
        golden<GetResourcesIdEvent>(29, hex("89abcdef"), 0x89abcdefU),
    };
}
