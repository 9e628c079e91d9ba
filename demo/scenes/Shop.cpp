// SPDX-License-Identifier: MIT
#include <array>
#include <cstdint>

#include "demo/scenes/People.h"
#include "demo/scenes/Scenes.h"

namespace ZorvaneDemo {

namespace {

class Shop : public Scene
{
public:
    void paintBackground(cairo_t *cr) const override
    {
        fillGradient(cr, {0, 0, width, 330}, rgb(0xeae4d8), rgb(0xd6cebf));
        fillGradient(cr, {0, 330, width, 390}, rgb(0xc9b79a), rgb(0x9f8a6c));
        for (int i = -14; i <= 14; ++i)
            strokeLine(cr, {640 + i * 70.0, 330}, {640 + i * 150.0, 720}, 1.5, rgb(0x8a7558), 0.5);
        for (const double y : {352.0, 388.0, 440.0, 512.0, 614.0})
            strokeLine(cr, {0, y}, {width, y}, 1.5, rgb(0x8a7558), 0.4);
        for (const double x : {160.0, 480.0, 800.0, 1120.0}) {
            fillPolygon(cr, {{x - 90, 20}, {x + 90, 20}, {x + 70, 34}, {x - 70, 34}},
                        rgb(0xffffff));
            glow(cr, {x, 30}, 190, rgb(0xfffbe8), 0.55);
        }
        paintShelf(cr, {30, 90, 360, 270}, 4, 15, 71);
        paintShelf(cr, {430, 90, 360, 270}, 4, 15, 72);
        paintFridge(cr, {830, 80, 420, 285});
        paintShelf(cr, {-60, 410, 300, 230}, 3, 9, 74);
        paintCounter(cr);
        vignette(cr, 0.36);
    }

    std::vector<Sprite> sprites(double seconds) const override
    {
        std::vector<Sprite> result;
        addWalk(&result, seconds, {0, 20, {1330, 420}, {330, 415}, 215, 210, look(0)});
        addWalk(&result, seconds, {20, 12, {330, 415}, {650, 420}, 210, 212, look(0)});
        addWalk(&result, seconds, {32, 16, {650, 420}, {1330, 450}, 212, 225, look(0)});
        addStanding(&result, seconds, {1120, 610}, 290, look(3));
        result.push_back({880, 500, 420, 220, [](cairo_t *cr) { paintCounter(cr); }});
        addWalk(&result, seconds, {8, 24, {-90, 660}, {840, 650}, 325, 320, look(1)});
        addWalk(&result, seconds, {32, 22, {840, 650}, {-90, 690}, 320, 335, look(1)});
        addWalk(&result, seconds, {46, 20, {300, 460}, {-80, 500}, 230, 245, look(2)});
        return result;
    }

private:
    static void paintShelf(cairo_t *cr, Box box, int shelves, int items, std::uint32_t seed)
    {
        const std::array<Rgb, 8> goods{rgb(0xc8423a), rgb(0x2f6b8e), rgb(0xe0b83c), rgb(0x4f8f5b),
                                       rgb(0xd9773c), rgb(0x7d5f93), rgb(0xf0ebe0), rgb(0x3d9a9a)};
        Dice dice(seed);
        fillBox(cr, {box.x - 8, box.y - 8, box.width + 16, box.height + 8}, rgb(0x5d4a38));
        fillBox(cr, box, rgb(0x433528));
        const double step = box.height / shelves;
        for (int shelf = 0; shelf < shelves; ++shelf) {
            const double ground = box.y + (shelf + 1) * step - 12;
            const double room = box.width / items;
            auto colour = static_cast<std::size_t>(dice.below(8));
            for (int item = 0; item < items; ++item) {
                if (dice.next() < 0.3)
                    colour = static_cast<std::size_t>(dice.below(8));
                const double tall = step * dice.between(0.5, 0.74);
                const Box good{box.x + item * room + 2, ground - tall, room - 4, tall};
                fillRounded(cr, good, 4, goods[colour]);
                fillBox(cr, {good.x + 3, good.y + tall * 0.35, good.width - 6, tall * 0.25},
                        rgb(0xffffff), 0.55);
            }
            fillBox(cr, {box.x - 4, ground, box.width + 8, 12}, rgb(0xb9976a));
            for (int tag = 0; tag < items; tag += 3)
                fillBox(cr, {box.x + tag * room + 4, ground + 2, 22, 8}, rgb(0xfff6d8));
        }
    }

    static void paintFridge(cairo_t *cr, Box box)
    {
        Dice dice(73);
        fillBox(cr, {box.x - 8, box.y - 30, box.width + 16, box.height + 34}, rgb(0x39424a));
        fillBox(cr, {box.x, box.y - 24, box.width, 18}, rgb(0x3d9ac0));
        for (int door = 0; door < 4; ++door) {
            const double x = box.x + door * box.width / 4;
            const Box glassDoor{x + 5, box.y, box.width / 4 - 10, box.height - 10};
            fillGradient(cr, glassDoor, rgb(0xeaf6fb), rgb(0xbcd8e4));
            for (int shelf = 0; shelf < 4; ++shelf) {
                const double ground = glassDoor.y + (shelf + 1) * glassDoor.height / 4 - 4;
                for (int item = 0; item < 6; ++item) {
                    const Rgb colour = mixed(rgb(0x4f9ac0), rgb(0xe8e3d0), dice.next());
                    fillRounded(cr, {glassDoor.x + 4 + item * 14.5, ground - 42, 11, 42}, 4,
                                colour);
                }
                fillBox(cr, {glassDoor.x, ground, glassDoor.width, 4}, rgb(0x7d929c));
            }
            fillPolygon(cr,
                        {{x + 20, box.y + box.height - 10},
                         {x + 70, box.y},
                         {x + 90, box.y},
                         {x + 40, box.y + box.height - 10}},
                        rgb(0xffffff), 0.22);
            fillRounded(cr, {x + box.width / 4 - 17, box.y + 110, 6, 60}, 3, rgb(0x39424a));
        }
    }

    static void paintCounter(cairo_t *cr)
    {
        fillPolygon(cr, {{900, 520}, {1280, 520}, {1280, 545}, {890, 545}}, rgb(0xd8c4a0));
        fillGradient(cr, {895, 545, 385, 175}, rgb(0x7a5f45), rgb(0x57432f));
        for (double x = 930; x < 1280; x += 60)
            strokeLine(cr, {x, 550}, {x, 720}, 2, rgb(0x4a3826), 0.7);
        fillRounded(cr, {985, 505, 80, 20}, 5, rgb(0x33383d));
        fillGradient(cr, {1200, 450, 64, 60}, rgb(0x3f4a55), rgb(0x22282e));
        fillBox(cr, {1206, 456, 52, 42}, rgb(0x7fc4d8));
        fillBox(cr, {1226, 508, 14, 14}, rgb(0x33383d));
    }
};

} // namespace

std::unique_ptr<Scene> newShop()
{
    return std::make_unique<Shop>();
}

} // namespace ZorvaneDemo
